// Microtasks of the current page: promise callbacks, above all. WebKit runs them when one of its
// own tasks ends, which is too late for what runs in a page through JavaScriptCore's functions,
// several times within one task. Main thread only.
#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace kestrel {

// Makes `context` the one whose microtasks are run, or none if null. Call it before the page's own
// script can replace what script offers.
void set_microtask_context(JSGlobalContextRef context);

// Runs the microtasks that wait in that context's page.
void run_microtasks();

}  // namespace kestrel
