#pragma once

#include <atomic>
#include <string>
#include <thread>

namespace kestrel::bench {

// Sends back to one peer whatever it sends, from a thread of its own.
class Echo {
  public:
    explicit Echo(const std::string& socket_path);
    ~Echo();
    Echo(const Echo&) = delete;
    Echo& operator=(const Echo&) = delete;

  private:
    void serve();

    std::string path_;
    int listener_;
    std::atomic<int> peer_ = -1;
    std::thread thread_;
};

}  // namespace kestrel::bench
