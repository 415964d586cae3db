#pragma once

#include <string>

namespace kestrel {

struct Account {
    std::string id;
    std::string name;  // the person's
    std::string user;
};

// The account of the user who runs the workbench, its only one.
Account local_account();

}  // namespace kestrel
