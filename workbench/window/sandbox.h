#pragma once

#include <string>

namespace kestrel {

// Whether this machine lets its users make the namespaces of which WebKit makes its sandbox. Inside
// containers it often does not, and WebKit would then start no web process at all.
bool can_make_sandbox();

// Whether WebKit's sandbox cannot show this path: it has directories of its own there, and fails to
// start, or leaves the path out.
bool sandbox_hides(const std::string& path);

}  // namespace kestrel
