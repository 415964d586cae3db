// What reaches the page: scripts and answers of the host. Main thread only.
#pragma once

#include <string>
#include <vector>

namespace kestrel {

// Runs `script` as the body of a function in the current page. An error line if that fails.
void run_script(const std::string& script);

// A callback's text, then its arguments.
using Answer = std::vector<std::string>;

// Evaluates the callback in the current page and calls the function it gives with the arguments,
// then tells the host. An error line, and nothing to the host, when it gives no object.
void deliver_answer(const Answer& answer);

}  // namespace kestrel
