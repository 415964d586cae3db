// Delivery of the host's scripts and answers to the page. Main thread only.
#pragma once

#include <string>
#include <vector>

#include "extension/current_page.h"

namespace kestrel {

// Runs `script` as the body of a function in the current page. An error line if that fails.
void run_script(const std::string& script);

// The same, if `page` is still the current page; otherwise only the error line.
void run_script_in(PageId page, const std::string& script);

// A callback's text, then its arguments.
using Answer = std::vector<std::string>;

// Evaluates the callback in the current page, calls the result with the arguments and tells the
// host. An error line, and nothing to the host, if the result is not an object.
void deliver_answer(const Answer& answer);

}  // namespace kestrel
