#pragma once

#include <functional>
#include <string>

#include "tests/workbench/store/person.h"
#include "workbench/options.h"

namespace kestrel::testing {

// A person does something in the workbench's window, and closes it. Returns the transcript.
std::string visit(const Options& options, const std::function<void(Person&)>& act);

}  // namespace kestrel::testing
