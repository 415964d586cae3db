#pragma once

#include <string>

namespace kestrel {

// Where the extension of a web process with this home directory connects.
std::string socket_path_in(const std::string& home);

// The home directory of the web processes, with the client's directory in it.
class PrivateHome {
  public:
    // Uses `given`, or creates a temporary directory if it is "". Throws std::system_error.
    explicit PrivateHome(const std::string& given);

    // Removes the directory if it was temporary.
    ~PrivateHome();
    PrivateHome(const PrivateHome&) = delete;
    PrivateHome& operator=(const PrivateHome&) = delete;

    const std::string& path() const { return path_; }
    std::string client_directory() const;

  private:
    std::string path_;
    bool is_temporary_;
};

}  // namespace kestrel
