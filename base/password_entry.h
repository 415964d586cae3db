#pragma once

#include <string>

namespace kestrel {

// A user's entry in the password database; the fields are empty if there is none.
struct PasswordEntry {
    std::string name;
    std::string home;
};

// The entry of the calling process's real user. Any thread.
PasswordEntry password_entry_of_caller();

}  // namespace kestrel
