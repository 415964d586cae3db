// The link with a trace file, with each system call failing once. Lines of the trace may be lost,
// frames never.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "ipc/frame_observer.h"
#include "tests/faults/faults.h"
#include "tests/faults/link_life.h"
#include "tests/faults/scenario.h"
#include "trace/frame_trace.h"

namespace kestrel::testing {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

enum Status { kAllArrived, kFramesMissing, kLinesMissing };

constexpr std::ptrdiff_t kFrames = 5;

std::ptrdiff_t lines_in(const std::string& path) {
    std::ifstream file(path);
    return std::count(std::istreambuf_iterator<char>(file), {}, '\n');
}

// Makes writes fail, which closes the trace file. Standard error is a file with room.
void end_the_trace() {
    const NoFaults of_this_thread;
    constexpr rlim_t kRoom = 4'096;
    const rlimit small{kRoom, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &small);
    std::signal(SIGXFSZ, SIG_IGN);
    const std::string text(kRoom, 'x');
    const Frame frame = build_frame(5, {}, std::array<std::string_view, 1>{text});
    for (int i = 0; i < 2; ++i) show_to_observer(Direction::from_page, *frame);
}

int life_of_a_traced_link() {
    const std::string trace = std::string(std::getenv("HOME")) + "/trace";
    setenv("KESTREL_TRACE", trace.c_str(), 1);
    start_frame_trace();
    const bool arrived = life_of_a_link() == 0;
    const bool is_whole = lines_in(trace) == kFrames;
    end_the_trace();
    if (!arrived) return kFramesMissing;
    return is_whole ? kAllArrived : kLinesMissing;
}

std::string told(int error) { return "/trace: " + std::string(strerror(error)) + "\n"; }

constexpr auto kNotWritten = "Could not write the trace file ";

TEST(Trace, WorksWithoutFaults) {
    const Outcome outcome = run_with({"", 0, 0}, life_of_a_traced_link);
    EXPECT_EQ(outcome.status, kAllArrived);
    EXPECT_THAT(outcome.errors, StartsWith(kNotWritten));
    EXPECT_THAT(outcome.errors, EndsWith(told(EFBIG)));
    EXPECT_FALSE(outcome.leaks);
}

TEST(Trace, LinkWorksIfTheFileCannotBeOpened) {
    for_each_fault({{"open", {EACCES, EDQUOT, EINTR, EIO, ELOOP, EMFILE, ENOSPC, ENXIO, EROFS}}},
                   life_of_a_traced_link, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kLinesMissing) << fault;
                       EXPECT_THAT(outcome.errors, StartsWith(kNotWritten)) << fault;
                       EXPECT_THAT(outcome.errors, EndsWith(told(fault.error))) << fault;
                   });
}

TEST(Trace, WriteErrorEndsTheTraceOnly) {
    for_each_fault({{"write", {EDQUOT, EFBIG, EIO, ENOSPC, EPIPE}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, fault.nth > kFrames ? kAllArrived : kLinesMissing)
                           << fault;
                       EXPECT_THAT(outcome.errors, StartsWith(kNotWritten)) << fault;
                       EXPECT_THAT(outcome.errors, EndsWith(told(fault.error))) << fault;
                   });
}

TEST(Trace, RetriesInterruptedWrites) {
    for_each_fault({{"write", {EINTR}}, {"poll", {EINTR, ENOMEM}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kAllArrived) << fault;
                       EXPECT_THAT(outcome.errors, EndsWith(told(EFBIG))) << fault;
                   });
}

// Lines without room are dropped and counted in the next line.
TEST(Trace, LosesNoFrameIfTheFileIsFull) {
    for_each_fault({{"write", {EAGAIN}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_NE(outcome.status, kFramesMissing) << fault;
                       EXPECT_THAT(outcome.errors, EndsWith(told(EFBIG))) << fault;
                   });
}

TEST(Trace, ReportsMissingMemory) {
    for_each_fault({{"malloc", {ENOMEM}}}, life_of_a_traced_link,
                   [&](const Fault& fault, const Outcome& outcome) {
                       EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
                   });
}

TEST(Trace, LinkErrorsAreReportedAsWithoutTrace) {
    for_each_fault({{"send", {EPIPE, ENOBUFS}}, {"read", {EIO}}, {"socket", {EMFILE}}},
                   life_of_a_traced_link, [](const Fault& fault, const Outcome& outcome) {
                       const bool may_be_late = fault.function == "read";
                       const int expected = fault.function == "send" ? 255 : kFramesMissing;
                       EXPECT_TRUE(outcome.status == expected ||
                                   (may_be_late && outcome.status == kAllArrived))
                           << fault << ": " << outcome.status;
                       EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
                   });
}

}  // namespace
}  // namespace kestrel::testing
