#pragma once

namespace kestrel {

// Whether this machine lets its users make the namespaces of which WebKit makes its sandbox. Inside
// containers it often does not, and WebKit would then start no web process at all.
bool can_make_sandbox();

}  // namespace kestrel
