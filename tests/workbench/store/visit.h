#pragma once

#include <functional>
#include <string>

#include "tests/workbench/store/person.h"
#include "workbench/options.h"

namespace kestrel::testing {

// Runs a workbench, calls `act` and closes the window. Returns the transcript.
std::string visit(const Options& options, const std::function<void(Person&)>& act);

}  // namespace kestrel::testing
