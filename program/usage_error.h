#pragma once

#include <stdexcept>

namespace kestrel {

// What the user asked for makes no sense, for the reason in the text: nothing has been done. Exit
// status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace kestrel
