#pragma once

#include <stdexcept>

namespace kestrel {

// An invalid argument; the text says why. Nothing has been done. Exit status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace kestrel
