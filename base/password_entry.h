#pragma once

#include <string>

namespace kestrel {

// What the password database says of a user; empty texts for one that it does not know.
struct PasswordEntry {
    std::string name;
    std::string home;
};

// The entry of the calling process's real user. Any thread.
PasswordEntry password_entry_of_caller();

}  // namespace kestrel
