// Fakes of the workbench's web requests, applications and images, linked instead of them so that no
// request leaves the process. They respond asynchronously in the main context, as the originals do.
#pragma once

#include <string>

namespace kestrel::fuzz {

struct FakeMachine {
    std::string text;  // of web pages, applications and errors; without NULs
    bool succeeds = true;
};

// The responses from now on.
FakeMachine& fake_machine();

}  // namespace kestrel::fuzz
