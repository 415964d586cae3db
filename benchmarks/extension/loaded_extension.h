// The library under test, loaded into a web process that already shows a page, so that what it
// costs can be told from what WebKit costs.
#pragma once

#include <webkit2/webkit-web-extension.h>

#include <string>

namespace kestrel::bench {

struct Paths {
    std::string extension;
    std::string empty_library;
};

// The page, and its main frame.
struct Shown {
    WebKitWebPage* page = nullptr;
    WebKitFrame* frame = nullptr;
};

// Loads it, calls its entry, waits until its reader has announced the process, attaches the page,
// and has `external` called a few times. Returns what that took, as the text of a JSON object.
// Main thread, once.
std::string load_extension(const Paths& paths, WebKitWebExtension* web_extension,
                           const Shown& shown);

// The descriptor of its link to the host.
int link_descriptor();

// Has the page attached `count` times, as if it had been loaded anew; nanoseconds a time.
double attach(const Shown& shown, int count);

}  // namespace kestrel::bench
