#pragma once

namespace kestrel {

// Whether users can create the namespaces that WebKit's sandbox needs. In containers they often
// cannot, and WebKit would then fail to start web processes.
bool can_create_sandbox();

}  // namespace kestrel
