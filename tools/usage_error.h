#pragma once

#include <stdexcept>

namespace kestrel::tools {

// What the user asked for cannot be: nothing has been changed. Exit status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace kestrel::tools
