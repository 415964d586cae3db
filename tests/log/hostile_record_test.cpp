// Damage that other processes may do to the settings file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/log/bytes.h"
#include "tests/log/machine.h"
#include "tests/support/file_content.h"

namespace {

using kestrel::kLogWebkit;
using kestrel::kVerbose;
using kestrel::testing::file_content;
using kestrel::testing::home;
using kestrel::testing::record_bytes;
using kestrel::testing::record_path;
using kestrel::testing::u32_at;
using kestrel::testing::write_file;

const std::vector<std::function<int()>> kSetters = {
    [] { return ZynLogEnableFlags(0x8000'0000); },
    [] { return ZynLogDisableFlags(1); },
    [] { return ZynLogSetCurrentLevel(kLogWebkit, kVerbose); },
    [] { return ZynLogSetOutputPath("/elsewhere"); },
    [] { return ZynLogSetRolloverSize(3); },
    [] { return ZynLogSetRolloverCount(5); },
    [] { return ZynLogSetSessionMax(7); },
};

void expect_defaults() {
    std::uint32_t flags = 0;
    EXPECT_EQ(ZynLogGetCurrentFlags(&flags), 1);
    EXPECT_EQ(flags, 0x62fU);
    EXPECT_EQ(ZynLogGetCurrentLevel(kLogWebkit), 0U);
    EXPECT_EQ(ZynLogGetWorkingLevel(kLogWebkit), 4U);
    EXPECT_EQ(ZynLogGetOutputPath(), std::string(GetLogFilePath()));
    EXPECT_EQ(ZynLogGetRolloverSize(), 200U);
    EXPECT_EQ(ZynLogGetRolloverCount(), 2U);
    EXPECT_EQ(ZynLogGetSessionMax(), 200U);
}

void cut_record_short() { ASSERT_EQ(truncate(record_path().c_str(), 0), 0); }

TEST(ForeignConfigFile, MayBeTruncatedWhileMapped) {
    ZynLogInitConfigOnly();
    for (const auto& set : kSetters) EXPECT_EQ(set(), 1);
    cut_record_short();
    expect_defaults();
    EXPECT_EQ(record_bytes(), "");
}

TEST(ForeignConfigFile, CannotBeChangedOnceTruncated) {
    ZynLogInitConfigOnly();
    cut_record_short();
    expect_defaults();
    for (const auto& set : kSetters) EXPECT_EQ(set(), 0);
    expect_defaults();
    EXPECT_EQ(record_bytes(), "");
}

// The first access after the truncation is by a setter.
TEST(ForeignConfigFile, CannotBeChangedByTheFirstAccessAfterTruncation) {
    for (const auto& set : kSetters) {
        ASSERT_EQ(ZynLogInitConfigOnly(), 1);
        cut_record_short();
        EXPECT_EQ(set(), 0);
        expect_defaults();
        EXPECT_EQ(record_bytes(), "");
        ZynLogShutdown();
    }
}

TEST(ForeignConfigFile, CannotBeChangedByAnyThreadOnceTruncated) {
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(ZynLogInitConfigOnly(), 1);
        std::vector<std::thread> setters;
        for (int thread = 0; thread < 4; ++thread) {
            setters.emplace_back([] {
                while (ZynLogSetSessionMax(7) == 1) {
                }
            });
        }
        cut_record_short();
        for (std::thread& setter : setters) setter.join();
        expect_defaults();
        ZynLogShutdown();
    }
}

TEST(ForeignConfigFile, HidesFailedChangesFromOtherThreads) {
    ZynLogInitConfigOnly();
    cut_record_short();
    EXPECT_EQ(ZynLogSetSessionMax(7), 0);
    std::atomic<bool> done = false;
    std::uint32_t seen = 200;
    std::thread reader([&] {
        while (!done && seen == 200) seen = ZynLogGetSessionMax();
    });
    for (int i = 0; i < 100'000; ++i) EXPECT_EQ(ZynLogSetSessionMax(7), 0);
    done = true;
    reader.join();
    EXPECT_EQ(seen, 200U);
}

TEST(ForeignConfigFile, CanBeChangedAfterARestart) {
    for (int i = 0; i < 3; ++i) {
        ZynLogInitConfigOnly();
        for (const auto& set : kSetters) EXPECT_EQ(set(), 1);
        EXPECT_EQ(u32_at(record_bytes(), 508), 7U);
        cut_record_short();
        EXPECT_EQ(ZynLogSetSessionMax(8), 0);
        ZynLogShutdown();
    }
    ZynLogInitConfigOnly();
    EXPECT_EQ(record_bytes().size(), 516U);
    EXPECT_EQ(ZynLogSetSessionMax(12), 1);
    EXPECT_EQ(u32_at(record_bytes(), 508), 12U);
}

TEST(ForeignConfigFile, MayBeTruncatedWhileThreadsRead) {
    ZynLogInitConfigOnly();
    std::atomic<bool> done = false;
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back([&] {
            while (!done) ZynLogGetWorkingLevel(kLogWebkit);
        });
    }
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(truncate(record_path().c_str(), 0), 0);
        ZynLogGetWorkingLevel(kLogWebkit);
    }
    done = true;
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(ZynLogGetWorkingLevel(kLogWebkit), 4U);
}

TEST(ForeignConfigFile, MayBeOfAnyFileType) {
    ASSERT_EQ(mkfifo(record_path().c_str(), 0600), 0);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    std::filesystem::remove(record_path());
    ZynLogShutdown();
    std::filesystem::create_directory(record_path());
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
}

siginfo_t seen_by_earlier_handler;

TEST(Sigbus, ChainsToThePreviousHandler) {
    struct sigaction earlier {};
    earlier.sa_flags = SA_SIGINFO;
    earlier.sa_sigaction = [](int, siginfo_t* info, void*) { seen_by_earlier_handler = *info; };
    sigaction(SIGBUS, &earlier, nullptr);
    ZynLogInitConfigOnly();
    raise(SIGBUS);
    EXPECT_EQ(seen_by_earlier_handler.si_signo, SIGBUS);
    ZynLogShutdown();
    struct sigaction after {};
    sigaction(SIGBUS, nullptr, &after);
    EXPECT_EQ(after.sa_sigaction, earlier.sa_sigaction);
}

struct sigaction guard {};
int seen_by_later_handler = 0;

// A handler of the program that chains to the previous one.
void see_and_pass_on(int number, siginfo_t* info, void* context) {
    if (++seen_by_later_handler < 10) guard.sa_sigaction(number, info, context);
}

TEST(Sigbus, ReachesALaterHandlerOnceAfterASecondInit) {
    signal(SIGBUS, SIG_IGN);
    struct sigaction later {};
    later.sa_flags = SA_SIGINFO;
    later.sa_sigaction = see_and_pass_on;
    ZynLogInitConfigOnly();
    sigaction(SIGBUS, &later, &guard);
    ZynLogShutdown();
    ZynLogInitConfigOnly();
    struct sigaction current {};
    sigaction(SIGBUS, nullptr, &current);
    EXPECT_EQ(current.sa_sigaction, later.sa_sigaction);
    raise(SIGBUS);
    EXPECT_EQ(seen_by_later_handler, 1);
    ZynLogShutdown();
}

TEST(Sigbus, WithTheDefaultActionEndsTheProcess) {
    EXPECT_EXIT(
        {
            signal(SIGBUS, SIG_DFL);
            ZynLogInitConfigOnly();
            raise(SIGBUS);
            raise(SIGBUS);
        },
        testing::KilledBySignal(SIGBUS), "");
}

}  // namespace
