// The library under test, loaded into a web process that already shows a page, so that its costs
// can be told from WebKit's.
#pragma once

#include <webkit2/webkit-web-extension.h>

namespace kestrel::bench {

struct Page {
    WebKitWebPage* page = nullptr;
    WebKitFrame* main_frame = nullptr;
};

// Loads the library, calls its entry point, waits until its reader thread has announced the process
// to the host (unless it is the empty library, which has no link), and attaches the page. Call
// once, on the main thread.
void load_extension(const char* path, WebKitWebExtension* web_extension, const Page& page);

// The descriptor of the link to the host.
int link_descriptor();

// Attaches the page `count` times as if it had been loaded again; nanoseconds per attachment.
double attach(const Page& page, int count);

}  // namespace kestrel::bench
