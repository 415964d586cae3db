// The exported globals, and the functions beside them.
#include <gtest/gtest.h>
#include <syslog.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "extension/KsJS_proxy.h"
#include "extension/page_globals.h"
#include "tests/support/script_context.h"

namespace {

struct SyslogLine {
    int priority;
    std::string text;
};
SyslogLine last_line;

void take_line(int priority, const char* format, std::va_list arguments) {
    std::array<char, 256> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    last_line = {priority, text.data()};
}

}  // namespace

// In place of the C library's, the second one that of hardened builds.
extern "C" void vsyslog(int priority, const char* format, std::va_list arguments) {
    take_line(priority, format, arguments);
}
extern "C" void __vsyslog_chk(int priority, int /*flag*/, const char* format,
                              std::va_list arguments) {
    take_line(priority, format, arguments);
}

namespace kestrel::testing {
namespace {

TEST(Globals, HoldNoPageInitially) {
    EXPECT_EQ(web_frame, nullptr);
    EXPECT_EQ(web_world, nullptr);
    EXPECT_EQ(jsContext, nullptr);
    EXPECT_EQ(globalObject, nullptr);
    EXPECT_EQ(getJsContext(), nullptr);
}

TEST(Globals, HoldEmptyTextsInitially) {
    EXPECT_STREQ(g_quoroot, "");
    EXPECT_STREQ(g_resources, "");
    EXPECT_EQ(KsJS_proxy::resources, "");
    EXPECT_EQ(KsJS_proxy::preloadURL, "");
}

TEST(Globals, IncludeUnusedObjectsThatWork) {
    EXPECT_TRUE(mut.try_lock());
    mut.unlock();
    con.notify_all();
    EXPECT_EQ(cl, 0);
    EXPECT_EQ(fileURL, "");
    EXPECT_FALSE(fileURL_bool);
}

TEST(Globals, ReturnTheCurrentContext) {
    const ScriptContext page;
    jsContext = page.get();
    EXPECT_EQ(getJsContext(), page.get());
    jsContext = nullptr;
}

TEST(PrintLog, WritesToSyslogAtDebug) {
    printLog("%s has %d of %c", "text", 3, 'x');
    EXPECT_EQ(last_line.priority, LOG_DEBUG);
    EXPECT_EQ(last_line.text, "text has 3 of x");
}

}  // namespace
}  // namespace kestrel::testing
