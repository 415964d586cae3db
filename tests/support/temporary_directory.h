#pragma once

#include <string>

namespace kestrel::testing {

// A new directory in the system's temporary directory, removed with its content.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace kestrel::testing
