// Side effects that the client must not have on its process.

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <string>
#include <vector>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"

namespace {

using kestrel::kError;
using kestrel::kLogWebkit;
using kestrel::testing::DaemonConnection;
using kestrel::testing::FakeDaemon;

[[gnu::format(printf, 1, 2)]] void trace_with_list(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    __ZynTraceV(kLogWebkit, kError, "", "", 0, format, arguments);
    va_end(arguments);
}

struct Call {
    const char* name;
    std::function<void()> make;
};

// Every function of the public headers except init and shutdown.
std::vector<Call> calls() {
    static std::uint32_t flags;
    return {
        {"GetConfigFilePath", [] { GetConfigFilePath(); }},
        {"GetLogFilePath", [] { GetLogFilePath(); }},
        {"GetSocketFilePath", [] { GetSocketFilePath(); }},
        {"GetQUORoot", [] { GetQUORoot(); }},
        {"GetTarnPackageversion", [] { GetTarnPackageversion(); }},
        {"check_heartbeat_file_age", [] { check_heartbeat_file_age("/nowhere"); }},
        {"__ZynTrace", [] { __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", "x"); }},
        {"__ZynTrace, bad text",
         [] { __ZynTrace(kLogWebkit, kError, "", "", 0, "%ls", L"\u2603"); }},
        {"__ZynTraceV", [] { trace_with_list("%s", "x"); }},
        {"__ZynLog", [] { __ZynLog(kError, "", "", 0, "x"); }},
        {"ZynLogEnableFlags", [] { ZynLogEnableFlags(kestrel::kLogThreadNameFlag); }},
        {"__ZynTrace, thread name", [] { __ZynTrace(kLogWebkit, kError, "", "", 0, "x"); }},
        {"ZynLogDisableFlags", [] { ZynLogDisableFlags(kestrel::kLogThreadNameFlag); }},
        {"ZynLogGetCurrentFlags", [] { ZynLogGetCurrentFlags(&flags); }},
        {"ZynLogGetDefaultFlags", [] { ZynLogGetDefaultFlags(&flags); }},
        {"ZynLogSetCurrentLevel", [] { ZynLogSetCurrentLevel(1, 1); }},
        {"ZynLogGetCurrentLevel", [] { ZynLogGetCurrentLevel(1); }},
        {"ZynLogGetDefaultLevel", [] { ZynLogGetDefaultLevel(1); }},
        {"ZynLogGetWorkingLevel", [] { ZynLogGetWorkingLevel(1); }},
        {"ZynLogGetParent", [] { ZynLogGetParent(1); }},
        {"ZynLogGetClassName", [] { ZynLogGetClassName(1); }},
        {"ZynLogGetClassDisplayName", [] { ZynLogGetClassDisplayName(1); }},
        {"ZynLogGetLevelName", [] { ZynLogGetLevelName(1); }},
        {"ZynLogGetLevelDisplayName", [] { ZynLogGetLevelDisplayName(1); }},
        {"ZynLogSetOutputPath", [] { ZynLogSetOutputPath("/x"); }},
        {"ZynLogGetOutputPath", [] { ZynLogGetOutputPath(); }},
        {"ZynLogSetRolloverSize", [] { ZynLogSetRolloverSize(0); }},
        {"ZynLogSetRolloverCount", [] { ZynLogSetRolloverCount(1); }},
        {"ZynLogSetSessionMax", [] { ZynLogSetSessionMax(1); }},
        {"ZynLogGetRolloverSize", [] { ZynLogGetRolloverSize(); }},
        {"ZynLogGetRolloverCount", [] { ZynLogGetRolloverCount(); }},
        {"ZynLogGetSessionMax", [] { ZynLogGetSessionMax(); }},
    };
}

void expect_errno_kept(const Call& call) {
    errno = 1'234;
    call.make();
    EXPECT_EQ(errno, 1'234) << call.name;
}

void expect_errno_kept_by_every_call() {
    for (const Call& call : calls()) expect_errno_kept(call);
}

const Call kInit{"ZynLogInit", [] { ZynLogInit(); }};
const Call kInitConfigOnly{"ZynLogInitConfigOnly", [] { ZynLogInitConfigOnly(); }};
const Call kShutdown{"ZynLogShutdown", [] { ZynLogShutdown(); }};

TEST(Errno, IsKeptBeforeInit) { expect_errno_kept_by_every_call(); }

TEST(Errno, IsKeptWithoutADaemon) {
    expect_errno_kept(kInit);
    expect_errno_kept_by_every_call();
    expect_errno_kept(kInit);
    expect_errno_kept(kShutdown);
    expect_errno_kept(kShutdown);
}

TEST(Errno, IsKeptWithADaemonAndAfterItCloses) {
    signal(SIGPIPE, SIG_IGN);
    const FakeDaemon daemon;
    expect_errno_kept(kInit);
    DaemonConnection connection = daemon.accept();
    expect_errno_kept_by_every_call();
    connection.hang_up();
    expect_errno_kept_by_every_call();
    expect_errno_kept(kShutdown);
}

TEST(Errno, IsKeptWithoutSettings) {
    kestrel::testing::write_file(kestrel::testing::home() + "/file", "");
    setenv("HOME", (kestrel::testing::home() + "/file").c_str(), 1);
    expect_errno_kept(kInitConfigOnly);
    expect_errno_kept(kShutdown);
    expect_errno_kept(kInit);
    expect_errno_kept_by_every_call();
}

TEST(Errno, IsVisibleToTheCallersFormat) {
    const FakeDaemon daemon;
    ZynLogInit();
    DaemonConnection connection = daemon.accept();
    connection.read_message();
    ZynLogEnableFlags(kestrel::kLogThreadNameFlag);
    const std::string format = "%m";
    errno = ENOSPC;
    __ZynLog(kError, "", "", 0, format.c_str(), 0);
    EXPECT_EQ(kestrel::testing::syslog_calls().back(), "vsyslog(3, No space left on device)");
    const std::string record = connection.read_message();
    EXPECT_TRUE(record.ends_with(std::string("]: No space left on device") + '\0'));
}

struct Disposition {
    void (*handler)(int);
    int flags;
    std::vector<int> blocked;

    friend bool operator==(const Disposition&, const Disposition&) = default;
};

// SA_RESTORER, which the C library adds to whatever it sets.
constexpr int kRestorer = 0x0400'0000;

std::vector<Disposition> dispositions() {
    std::vector<Disposition> result;
    for (int number = 1; number <= SIGRTMAX; ++number) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        Disposition disposition{action.sa_handler, action.sa_flags & ~kRestorer, {}};
        for (int other = 1; other <= SIGRTMAX; ++other) {
            if (sigismember(&action.sa_mask, other) == 1) disposition.blocked.push_back(other);
        }
        result.push_back(std::move(disposition));
    }
    return result;
}

TEST(Signals, DispositionsAreKept) {
    struct sigaction own {};
    own.sa_handler = [](int) {};
    own.sa_flags = SA_RESTART | SA_NODEFER;
    sigaddset(&own.sa_mask, SIGUSR1);
    sigaction(SIGPIPE, &own, nullptr);
    const auto before = dispositions();

    ZynLogInit();  // nobody listens
    for (const Call& call : calls()) call.make();
    ZynLogShutdown();
    const FakeDaemon daemon;
    ZynLogInit();
    DaemonConnection connection = daemon.accept();
    for (const Call& call : calls()) call.make();
    connection.hang_up();
    for (const Call& call : calls()) call.make();
    ZynLogShutdown();

    EXPECT_TRUE(dispositions() == before);
}

TEST(Descriptors, AreClosed) {
    const auto before = kestrel::testing::open_descriptors();
    for (int round = 0; round < 3; ++round) {
        ZynLogInit();
        for (const Call& call : calls()) call.make();
        ZynLogShutdown();
    }
    EXPECT_EQ(kestrel::testing::open_descriptors(), before);
}

}  // namespace
