#pragma once

#include <string>

namespace kestrel::bench {

// Accepts connections and discards all data. Its threads end with the process.
class Sink {
  public:
    // `type` is SOCK_STREAM or SOCK_DGRAM. Ends the program on errors.
    Sink(const std::string& path, int type);

    int connect_to() const;

  private:
    std::string path_;
};

}  // namespace kestrel::bench
