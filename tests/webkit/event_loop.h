#pragma once

#include <functional>

namespace kestrel::testing {

// Runs the default main context until `condition` holds; false when it did not within thirty
// seconds.
bool wait_until(const std::function<bool()>& condition);

// Runs the default main context until nothing is left to do at once.
void drain_events();

}  // namespace kestrel::testing
