// Exported globals under plain names, for programs that link the library. The main thread writes
// those of the page.
#pragma once

#include <JavaScriptCore/JavaScript.h>
#include <webkit2/webkit-web-extension.h>

#include <condition_variable>
#include <mutex>
#include <string>

#pragma GCC visibility push(default)

// The current page: see extension/current_page.h. Null while there is none.
extern WebKitFrame* web_frame;
extern WebKitScriptWorld* web_world;
extern JSGlobalContextRef jsContext;
extern JSObjectRef globalObject;

// The install root and the resources text for the next page, never null. g_quoroot lives as long
// as the process, a text in g_resources until the next page or the next type-34 message.
extern const char* g_quoroot;
extern const char* g_resources;

// Part of the exported interface; nothing in the library uses them.
extern std::mutex mut;
extern std::condition_variable con;
extern int cl;
extern bool fileURL_bool;

extern "C" {

extern std::string fileURL;

// jsContext. Main thread.
JSGlobalContextRef getJsContext();

// Writes a line to syslog at LOG_DEBUG, as printf. Any thread.
[[gnu::format(printf, 1, 2)]] void printLog(const char* format, ...);
}

#pragma GCC visibility pop
