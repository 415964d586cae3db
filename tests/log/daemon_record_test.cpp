// The bytes that the log daemon receives.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <clocale>
#include <string>
#include <thread>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/bytes.h"
#include "tests/log/daemon_link_fixture.h"
#include "tests/log/syslog_recorder.h"

namespace {

constinit std::atomic<bool> thread_has_no_name = false;

}  // namespace

// Fails on request, and then changes errno.
extern "C" int pthread_getname_np(pthread_t /*thread*/, char* name, std::size_t /*size*/) noexcept {
    if (thread_has_no_name) return errno = ERANGE;
    return prctl(PR_GET_NAME, name);
}

namespace {

using kestrel::kError;
using kestrel::kLogThreadNameFlag;
using kestrel::kLogWebkit;
using kestrel::testing::DaemonLink;
using kestrel::testing::syslog_calls;
using kestrel::testing::u16_at;
using kestrel::testing::u64_at;
using testing::ElementsAre;

std::string terminated(std::string text) { return text + '\0'; }

TEST_F(DaemonLink, SendsAHelloFirst) {
    const std::string ident = "veltrane-log-client-test";
    const std::string fields{static_cast<char>(ident.size() + 3), 0, 2, 0, 0, 0};
    EXPECT_EQ(hello_, fields + terminated(ident));
    EXPECT_TRUE(connection_.is_quiet());
}

TEST_F(DaemonLink, SerialisesALine) {
    timeval before{};
    gettimeofday(&before, nullptr);
    __ZynTrace(kLogWebkit, kError, "", "", 0, "%s %d", "number", 7);
    timeval after{};
    gettimeofday(&after, nullptr);

    const std::string record = connection_.read_message();
    ASSERT_EQ(record.size(), 26U + 8 + 1);
    EXPECT_EQ(u16_at(record, 0), 23U + 8);
    EXPECT_EQ(u16_at(record, 2), 1U);
    EXPECT_EQ(u16_at(record, 4), 4U);
    EXPECT_EQ(u16_at(record, 6), 41U);
    EXPECT_EQ(u16_at(record, 8), static_cast<std::uint64_t>(gettid()) & 0xffffU);
    const auto microseconds = [](std::uint64_t seconds, std::uint64_t rest) {
        return seconds * 1'000'000 + rest;
    };
    const auto at = microseconds(u64_at(record, 10), u64_at(record, 18));
    EXPECT_LT(u64_at(record, 18), 1'000'000U);
    EXPECT_GE(at, microseconds(static_cast<std::uint64_t>(before.tv_sec),
                               static_cast<std::uint64_t>(before.tv_usec)));
    EXPECT_LE(at, microseconds(static_cast<std::uint64_t>(after.tv_sec),
                               static_cast<std::uint64_t>(after.tv_usec)));
    EXPECT_EQ(text_of(record), terminated("number 7"));
}

TEST_F(DaemonLink, SendsTheThreadId) {
    pid_t thread_id = 0;
    std::thread([&] {
        thread_id = gettid();
        __ZynTrace(kLogWebkit, kError, "", "", 0, "x");
    }).join();
    EXPECT_EQ(u16_at(connection_.read_message(), 8),
              static_cast<std::uint64_t>(thread_id) & 0xffffU);
}

TEST_F(DaemonLink, SendsAnEmptyLine) {
    __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", "");
    const std::string record = connection_.read_message();
    EXPECT_EQ(u16_at(record, 0), 23U);
    EXPECT_EQ(text_of(record), terminated(""));
}

TEST_F(DaemonLink, AddsNoNewline) {
    __ZynTrace(kLogWebkit, kError, "", "", 0, "a\n");
    EXPECT_EQ(text_of(connection_.read_message()), terminated("a\n"));
}

TEST_F(DaemonLink, TruncatesTextTo8191Characters) {
    for (const std::size_t length : {8'190U, 8'191U, 8'192U, 10'000U}) {
        const std::string text(length, 't');
        __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", text.c_str());
        const std::string record = connection_.read_message();
        const std::size_t kept = std::min<std::size_t>(length, 8'191);
        EXPECT_EQ(u16_at(record, 0), 23 + kept);
        EXPECT_EQ(text_of(record), terminated(std::string(kept, 't')));
    }
}

TEST_F(DaemonLink, PrependsTheThreadNameIfTheFlagIsSet) {
    ZynLogEnableFlags(kLogThreadNameFlag);
    std::thread([] {
        pthread_setname_np(pthread_self(), "worker");
        __ZynTrace(kLogWebkit, kError, "", "", 0, "busy");
    }).join();
    EXPECT_EQ(text_of(connection_.read_message()), terminated("[worker]: busy"));
    ZynLogDisableFlags(kLogThreadNameFlag);
    __ZynTrace(kLogWebkit, kError, "", "", 0, "busy");
    EXPECT_EQ(text_of(connection_.read_message()), terminated("busy"));
}

TEST_F(DaemonLink, CountsTheThreadNameForTheTextLimit) {
    ZynLogEnableFlags(kLogThreadNameFlag);
    std::thread([] {
        pthread_setname_np(pthread_self(), "fifteen-letters");
        const std::string text(10'000, 't');
        __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", text.c_str());
    }).join();
    const std::string record = connection_.read_message();
    EXPECT_EQ(u16_at(record, 0), 8'214U);
    EXPECT_EQ(text_of(record), terminated("[fifteen-letters]: " + std::string(8'191 - 19, 't')));
}

TEST_F(DaemonLink, PrependsAnEmptyNameIfTheThreadHasNone) {
    ZynLogEnableFlags(kLogThreadNameFlag);
    thread_has_no_name = true;
    const std::string format = "%m";
    errno = ENOSPC;
    __ZynTrace(kLogWebkit, kError, "", "", 0, format.c_str(), 0);
    thread_has_no_name = false;
    EXPECT_EQ(text_of(connection_.read_message()), terminated("[]: No space left on device"));
}

TEST_F(DaemonLink, OmitsTextThatCannotBeConverted) {
    std::setlocale(LC_ALL, "C");
    __ZynTrace(kLogWebkit, kError, "", "", 0, "text %ls", L"\u2603");
    const std::string record = connection_.read_message();
    EXPECT_EQ(u16_at(record, 0), 23U);
    EXPECT_EQ(text_of(record), terminated(""));
}

TEST_F(DaemonLink, SendsClasslessLinesAsClassAllAndToSyslog) {
    __ZynLog(3, "", "", 0, "x");
    const std::string record = connection_.read_message();
    EXPECT_EQ(u16_at(record, 4), 3U);
    EXPECT_EQ(u16_at(record, 6), 0U);
    EXPECT_EQ(text_of(record), terminated("x"));
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(4, x)"));
}

TEST_F(DaemonLink, FormatsAClasslessLineForBothDestinations) {
    __ZynLog(2, "", "", 0, "%s %d %s", "a", 1, "b");
    EXPECT_EQ(text_of(connection_.read_message()), terminated("a 1 b"));
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(5, a 1 b)"));
}

TEST_F(DaemonLink, OmitsTheThreadNameOfAClasslessLineInSyslog) {
    ZynLogEnableFlags(kLogThreadNameFlag);
    pthread_setname_np(pthread_self(), "main-thread");
    __ZynLog(2, "", "", 0, "x");
    EXPECT_EQ(text_of(connection_.read_message()), terminated("[main-thread]: x"));
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(5, x)"));
}

}  // namespace
