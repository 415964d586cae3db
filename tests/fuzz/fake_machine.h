// The web, the applications and the images of this machine, in place of the workbench's: linked
// instead of them, nothing leaves the process. Each answers as the original promises, later and in
// the main context.
#pragma once

#include <string>

namespace kestrel::fuzz {

struct FakeMachine {
    std::string text;  // of web pages, applications and errors; without NULs
    bool succeeds = true;
};

// What they answer from now on.
FakeMachine& fake_machine();

}  // namespace kestrel::fuzz
