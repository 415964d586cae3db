// The link's whole life while the wire is traced into a file, with each system call failing once.
// Lines of the trace may be lost, frames never.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "ipc/frame.h"
#include "ipc/wire_trace.h"
#include "tests/faults/faults.h"
#include "tests/faults/link_life.h"
#include "tests/faults/scenario.h"
#include "tests/support/process_state.h"

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

// The trace goes on for as long as the process does. A frame that its file has no room for ends it;
// standard error is a file, too, and has room.
void end_the_trace() {
    const NoFaults of_this_thread;
    constexpr rlim_t kRoom = 4'096;
    const rlimit small{kRoom, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string text(2 * kRoom, 'x');
    const Frame frame = build_frame(5, {}, std::array<std::string_view, 1>{text});
    if (frame) put_into_wire_trace(Direction::from_page, *frame);
    comes_true([] { return running_threads() == 0; });
}

int life_of_a_traced_link() {
    const std::string trace = std::string(std::getenv("HOME")) + "/trace";
    setenv("KESTREL_TRACE", trace.c_str(), 1);
    const bool arrived = life_of_a_link() == 0;
    // A note of dropped frames has a line, too.
    const bool is_whole =
        arrived &&
        comes_true([&] { return lines_in(trace) == kFrames || running_threads() == 0; }) &&
        lines_in(trace) == kFrames;
    if (running_threads() > 0) end_the_trace();
    if (!arrived) return kFramesMissing;
    return is_whole ? kAllArrived : kLinesMissing;
}

std::string told(int error) { return "/trace: " + std::string(strerror(error)) + "\n"; }

constexpr auto kNotWritten = "Could not write the wire's trace to ";

TEST(TraceFaults, NoneHappens) {
    const Outcome outcome = run_with({"", 0, 0}, life_of_a_traced_link);
    EXPECT_EQ(outcome.status, kAllArrived);
    EXPECT_THAT(outcome.errors, StartsWith(kNotWritten));
    EXPECT_THAT(outcome.errors, EndsWith(told(EFBIG)));
    EXPECT_FALSE(outcome.leaks);
}

TEST(TraceFaults, OfOpeningLeaveALinkWithoutTrace) {
    for_each_fault({{"open", {EACCES, EDQUOT, EINTR, EIO, ELOOP, EMFILE, ENOSPC, ENXIO, EROFS}}},
                   life_of_a_traced_link, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kLinesMissing) << fault;
                       EXPECT_THAT(outcome.errors, StartsWith(kNotWritten)) << fault;
                       EXPECT_THAT(outcome.errors, EndsWith(told(fault.error))) << fault;
                   });
}

// What is told of the trace's end is written, too, and may be lost.
TEST(TraceFaults, OfWritingEndTheTraceAndNothingElse) {
    for_each_fault({{"write", {EDQUOT, EFBIG, EIO, ENOSPC, EPIPE}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, fault.nth > kFrames ? kAllArrived : kLinesMissing)
                           << fault;
                       if (outcome.errors.empty() && fault.nth == kFrames + 2) return;
                       EXPECT_THAT(outcome.errors, StartsWith(kNotWritten)) << fault;
                       EXPECT_THAT(outcome.errors, EndsWith(told(fault.error))) << fault;
                   });
}

TEST(TraceFaults, OfAnInterruptionLoseNoLine) {
    for_each_fault({{"write", {EAGAIN, EINTR}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kAllArrived) << fault;
                       EXPECT_THAT(outcome.errors, EndsWith(told(EFBIG))) << fault;
                   });
    for_each_fault(
        {{"poll", {EINTR, ENOMEM}}},
        [] {
            fail_before("write", EAGAIN);
            return life_of_a_traced_link();
        },
        [](const Fault& fault, const Outcome& outcome) {
            EXPECT_EQ(outcome.status, kAllArrived) << fault;
            EXPECT_THAT(outcome.errors, EndsWith(told(EFBIG))) << fault;
        });
}

// The first is that of standard error, without which the trace's end goes untold.
TEST(TraceFaults, OfDescriptorsTakeOnlyWhatTheyAreFor) {
    for_each_fault({{"fcntl", {EINVAL, EMFILE}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       if (fault.nth == 1) {
                           EXPECT_EQ(outcome.status, kAllArrived) << fault;
                           EXPECT_EQ(outcome.errors, "") << fault;
                       }
                       EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
                   });
    for_each_fault({{"close", {EDQUOT, EINTR, EIO, ENOSPC}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kAllArrived) << fault;
                       EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
                   });
}

TEST(TraceFaults, OfItsThreadLeaveALinkWithoutTrace) {
    for_each_fault({{"pthread_create", {EAGAIN, EPERM}}}, life_of_a_traced_link,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, fault.nth == 1 ? kLinesMissing : kFramesMissing)
                           << fault;
                       EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
                   });
}

// A frame that the trace has no memory for is counted in its place.
TEST(TraceFaults, OfMemoryEndInDocumentedLines) {
    int untold = 0;
    for_each_fault({{"malloc", {ENOMEM}}}, life_of_a_traced_link,
                   [&](const Fault& fault, const Outcome& outcome) {
                       if (outcome.status == kAllArrived) ++untold;
                       EXPECT_NE(outcome.status, kLinesMissing) << fault;
                       EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
                   });
    EXPECT_GE(untold, kFrames);
}

TEST(TraceFaults, OfTheLinkAreAsEver) {
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
