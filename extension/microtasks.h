// Microtasks of the current page: promise callbacks, above all. WebKit runs them when one of its
// own tasks ends, which is too late for what runs in a page through JavaScriptCore's functions,
// several times within one task. Main thread only.
#pragma once

namespace kestrel {

// Runs the microtasks that wait in the current page.
void run_microtasks();

// Clears the cache; call when the page changes.
void forget_microtask_context();

}  // namespace kestrel
