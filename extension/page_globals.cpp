#include "extension/page_globals.h"

#include <syslog.h>

#include <cstdarg>

constinit WebKitFrame* web_frame = nullptr;
constinit WebKitScriptWorld* web_world = nullptr;
constinit JSGlobalContextRef jsContext = nullptr;
constinit JSObjectRef globalObject = nullptr;

constinit const char* g_quoroot = "";
constinit const char* g_resources = "";

constinit std::mutex mut;
std::condition_variable con;
constinit int cl = 0;
std::string fileURL;
constinit bool fileURL_bool = false;

JSGlobalContextRef getJsContext() { return jsContext; }

void printLog(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    vsyslog(LOG_DEBUG, format, arguments);
    va_end(arguments);
}
