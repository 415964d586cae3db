#pragma once

#include <functional>

namespace kestrel::testing {

// Runs the default main context until `condition` holds; false when it did not within thirty
// seconds.
bool wait_until(const std::function<bool()>& condition);

}  // namespace kestrel::testing
