#pragma once

#include <string>

namespace kestrel::bench {

// Takes connections and whatever comes through them, as a peer that is never late. Its threads end
// with the process.
class Sink {
  public:
    // Listens for streams, or takes datagrams. Ends the program when it cannot.
    Sink(const std::string& path, int type);

    int connect_to() const;

  private:
    std::string path_;
};

}  // namespace kestrel::bench
