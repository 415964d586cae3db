#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/file_descriptor.h"

namespace kestrel::testing {

// A local web server that responds with exactly the bytes that the test provides.
class WebServer {
  public:
    struct Saying {
        Saying(std::string said, bool is_all = true) : bytes(std::move(said)), hangs_up(is_all) {}

        std::string bytes;
        bool hangs_up;  // or keeps the connection open without writing more
    };

    // Called on the server's thread with a complete request, body included.
    using Answer = std::function<Saying(const std::string& request)>;

    explicit WebServer(Answer answer);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    std::string url(const std::string& path = "/") const;

    // All requests so far.
    std::vector<std::string> requests() const;

  private:
    void serve();

    Answer answer_;
    FileDescriptor socket_;
    std::vector<FileDescriptor> silent_;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::thread thread_;
};

}  // namespace kestrel::testing
