#pragma once

#include <functional>
#include <map>
#include <string>

#include "tests/support/temporary_directory.h"

namespace kestrel::testing {

// An empty file system of its own, in which functions run as in a process of that system's
// superuser: every absolute path, /proc and the password database are the test's to lay out.
class SeparateRoot {
  public:
    struct Outcome {
        std::string result;
        std::string errors;  // what went to standard error
    };

    // Whether this process may use one.
    static bool is_possible();

    // Where `path` of that system is to be found from outside.
    std::string outside(const std::string& path) const { return directory_.path() + path; }

    // Makes the system's /proc/self/exe lead to `target`.
    void set_executable(const std::string& target) const;

    void set_password_file(const std::string& content) const;

    // Runs the function in a child process with this system and this environment.
    Outcome run(const std::map<std::string, std::string>& environment,
                const std::function<std::string()>& function) const;

  private:
    TemporaryDirectory directory_;
};

}  // namespace kestrel::testing
