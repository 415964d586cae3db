// What the log daemon gets, byte by byte.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <set>
#include <string>
#include <thread>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/log/bytes.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"

namespace {

constinit std::atomic<bool> thread_has_no_name = false;

}  // namespace

// Fails when told to, and then changes errno.
extern "C" int pthread_getname_np(pthread_t /*thread*/, char* name, std::size_t /*size*/) noexcept {
    if (thread_has_no_name) return errno = ERANGE;
    return prctl(PR_GET_NAME, name);
}

namespace {

using kestrel::kError;
using kestrel::kFatal;
using kestrel::kLogThreadNameFlag;
using kestrel::kLogWebkit;
using kestrel::testing::DaemonConnection;
using kestrel::testing::FakeDaemon;
using kestrel::testing::open_descriptors;
using kestrel::testing::syslog_calls;
using kestrel::testing::u16_at;
using kestrel::testing::u64_at;
using testing::ElementsAre;
using testing::IsEmpty;

// A daemon to which this process has connected and introduced itself.
class DaemonLink : public testing::Test {
  protected:
    DaemonLink() {
        signal(SIGPIPE, SIG_IGN);
        kestrel::testing::clear_syslog_calls();
    }

    static std::string text_of(const std::string& record) { return record.substr(26); }

    const FakeDaemon daemon_;
    const int link_fd_ = init_and_find_link();
    DaemonConnection connection_ = daemon_.accept();
    const std::string hello_ = connection_.read_message();

  private:
    // The one descriptor that the client has opened.
    static int init_and_find_link() {
        const std::set<int> before = open_descriptors();
        ZynLogInit();
        std::set<int> opened = open_descriptors();
        for (const int fd : before) opened.erase(fd);
        EXPECT_EQ(opened.size(), 1U);
        return *opened.begin();
    }
};

std::string terminated(std::string text) { return text + '\0'; }

TEST_F(DaemonLink, BeginsWithAHello) {
    const std::string ident = "veltrane-log-client-test";
    const std::string fields{static_cast<char>(ident.size() + 3), 0, 2, 0, 0, 0};
    EXPECT_EQ(hello_, fields + terminated(ident));
    EXPECT_TRUE(connection_.is_quiet());
}

TEST_F(DaemonLink, CarriesALineInTheFieldsOfARecord) {
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

TEST_F(DaemonLink, NamesTheThreadThatWrites) {
    pid_t thread_id = 0;
    std::thread([&] {
        thread_id = gettid();
        __ZynTrace(kLogWebkit, kError, "", "", 0, "x");
    }).join();
    EXPECT_EQ(u16_at(connection_.read_message(), 8),
              static_cast<std::uint64_t>(thread_id) & 0xffffU);
}

TEST_F(DaemonLink, CarriesAnEmptyLine) {
    __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", "");
    const std::string record = connection_.read_message();
    EXPECT_EQ(u16_at(record, 0), 23U);
    EXPECT_EQ(text_of(record), terminated(""));
}

TEST_F(DaemonLink, AddsNoNewline) {
    __ZynTrace(kLogWebkit, kError, "", "", 0, "a\n");
    EXPECT_EQ(text_of(connection_.read_message()), terminated("a\n"));
}

TEST_F(DaemonLink, CutsTextAt8191Characters) {
    for (const std::size_t length : {8'190U, 8'191U, 8'192U, 10'000U}) {
        const std::string text(length, 't');
        __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", text.c_str());
        const std::string record = connection_.read_message();
        const std::size_t kept = std::min<std::size_t>(length, 8'191);
        EXPECT_EQ(u16_at(record, 0), 23 + kept);
        EXPECT_EQ(text_of(record), terminated(std::string(kept, 't')));
    }
}

TEST_F(DaemonLink, PutsTheThreadNameFirstIfTheFlagIsSet) {
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

TEST_F(DaemonLink, CutsAThreadNameAndItsLineTogether) {
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

TEST_F(DaemonLink, PutsNoNameFirstIfTheThreadHasNone) {
    ZynLogEnableFlags(kLogThreadNameFlag);
    thread_has_no_name = true;
    const std::string format = "%m";
    errno = ENOSPC;
    __ZynTrace(kLogWebkit, kError, "", "", 0, format.c_str(), 0);
    thread_has_no_name = false;
    EXPECT_EQ(text_of(connection_.read_message()), terminated("[]: No space left on device"));
}

TEST_F(DaemonLink, LeavesOutTextThatCannotBeConverted) {
    std::setlocale(LC_ALL, "C");
    __ZynTrace(kLogWebkit, kError, "", "", 0, "text %ls", L"\u2603");
    const std::string record = connection_.read_message();
    EXPECT_EQ(u16_at(record, 0), 23U);
    EXPECT_EQ(text_of(record), terminated(""));
}

TEST_F(DaemonLink, KeepsSyslogOutOfIt) {
    __ZynTrace(kLogWebkit, kError, "", "", 0, "x");
    EXPECT_THAT(syslog_calls(), IsEmpty());
}

TEST_F(DaemonLink, CarriesClasslessLinesAsOfClassAllAndToSyslogToo) {
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

TEST_F(DaemonLink, PutsTheThreadNameOfAClasslessLineIntoTheRecordOnly) {
    ZynLogEnableFlags(kLogThreadNameFlag);
    pthread_setname_np(pthread_self(), "main-thread");
    __ZynLog(2, "", "", 0, "x");
    EXPECT_EQ(text_of(connection_.read_message()), terminated("[main-thread]: x"));
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(5, x)"));
}

TEST_F(DaemonLink, IsClosedInProgramsThatThisOneStarts) {
    EXPECT_TRUE((fcntl(link_fd_, F_GETFD) & FD_CLOEXEC) != 0);
}

TEST_F(DaemonLink, LosesOneLineWhenTheDaemonGoesAndSendsTheRestToSyslog) {
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    EXPECT_THAT(syslog_calls(), IsEmpty());
    __ZynTrace(kLogWebkit, kError, "", "", 0, "second");
    __ZynTrace(kLogWebkit, kFatal, "", "", 0, "third");
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(3, second)", "vsyslog(1, third)"));
}

TEST_F(DaemonLink, IsNotMadeAgainAfterTheDaemonHasGone) {
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    __ZynTrace(kLogWebkit, kError, "", "", 0, "second");
    EXPECT_TRUE(daemon_.is_quiet());
    ZynLogInit();
    EXPECT_TRUE(daemon_.is_quiet());
    EXPECT_EQ(syslog_calls().back(), "syslog(3, Failed to connect with logd.)");
    ZynLogShutdown();
    ZynLogInit();
    EXPECT_FALSE(daemon_.is_quiet());
}

TEST_F(DaemonLink, ClosesItsDescriptorWhenTheDaemonHasGone) {
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    EXPECT_EQ(open_descriptors().count(link_fd_), 0U);
}

TEST_F(DaemonLink, BreaksWhenTheDaemonTakesOnlyPartOfARecord) {
    // A daemon that reads nothing, and a socket that does not wait for it.
    fcntl(link_fd_, F_SETFL, O_NONBLOCK);
    const std::string text(8'000, 't');
    int lines = 0;
    while (syslog_calls().empty() && lines < 10'000) {
        __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", text.c_str());
        ++lines;
    }
    EXPECT_GT(lines, 10);
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(3, " + text + ")"));
    for (int whole = 0; whole < lines - 2; ++whole) {
        ASSERT_EQ(connection_.read_message().size(), 26U + 8'001);
    }
    connection_.read_message();
    EXPECT_TRUE(connection_.is_closed());
}

volatile std::sig_atomic_t sigpipes = 0;

TEST_F(DaemonLink, RaisesSigpipeWhenTheDaemonHasGone) {
    signal(SIGPIPE, [](int) { sigpipes = sigpipes + 1; });
    connection_.hang_up();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "lost");
    EXPECT_EQ(sigpipes, 1);
    __ZynTrace(kLogWebkit, kError, "", "", 0, "to syslog");
    EXPECT_EQ(sigpipes, 1);
}

TEST(DaemonSocket, MayHaveAPathThatFillsItsAddress) {
    const std::string suffix = "//.QUOClient/.zynlogsocket";
    std::string path = kestrel::testing::home() + "/";
    path.append(107 - suffix.size() - path.size(), 'd');
    setenv("HOME", path.c_str(), 1);
    GetSocketFilePath();
    const FakeDaemon daemon(path + suffix);
    ZynLogInit();
    EXPECT_FALSE(daemon.is_quiet());
}

// Where there is no path, there is no daemon: an empty path would be an abstract name of NULs.
TEST(DaemonSocket, IsNeverAnAbstractName) {
    const FakeDaemon impostor{std::string()};
    kestrel::testing::write_file(kestrel::testing::home() + "/file", "");
    setenv("HOME", (kestrel::testing::home() + "/file").c_str(), 1);
    ZynLogInit();
    EXPECT_TRUE(impostor.is_quiet());
}

TEST(DaemonSocket, MayBeStale) {
    kestrel::testing::client_directory();
    const std::string path = GetSocketFilePath();
    kestrel::testing::write_file(path, "");
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_EQ(syslog_calls().back(), "syslog(3, Failed to connect with logd.)");
}

}  // namespace
