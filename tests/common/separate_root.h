#pragma once

#include <functional>
#include <map>
#include <string>

#include "tests/support/temporary_directory.h"

namespace kestrel::testing {

// An empty root directory in which functions run as the superuser of a separate system: the test
// controls all absolute paths, /proc and the password database.
class SeparateRoot {
  public:
    struct Outcome {
        std::string result;
        std::string errors;  // standard error
    };

    // Whether the kernel allows this process to use one.
    static bool is_possible();

    // The path outside of `path` in that system.
    std::string outside(const std::string& path) const { return directory_.path() + path; }

    // Makes the system's /proc/self/exe a link to `target`.
    void set_executable(const std::string& target) const;

    void set_password_file(const std::string& content) const;

    // Runs the function in a child process with this system and this environment.
    Outcome run(const std::map<std::string, std::string>& environment,
                const std::function<std::string()>& function) const;

  private:
    TemporaryDirectory directory_;
};

}  // namespace kestrel::testing
