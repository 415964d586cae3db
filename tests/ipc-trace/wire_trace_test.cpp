// Processes whose link is traced. Each test runs its process to the end and looks at what it left.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "ipc/send.h"
#include "tests/ipc-trace/json_object.h"
#include "tests/ipc-trace/traced_link.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::SizeIs;
using ::testing::StrEq;

const std::string kTimePattern = R"(\[[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{6}\])";

void send_text(std::int32_t type, std::string_view text) { send(type, {}, std::array{text}); }

// A request, an answer, and what comes back for it; then the end. Fails if any byte differs from
// what it is without a trace.
[[noreturn]] void converse(const char* trace) {
    const TracedLink host(trace);
    send_text(18, "key");
    bool as_ever = host.read_frame() == frame_bytes(18, {}, {"key"});
    host.write(frame_bytes(1, {}, {"f", "a\n\xff"}));
    as_ever = as_ever && host.read_frame() == frame_bytes(33, {}, {"f", "a\n\xff"});
    std::exit(as_ever ? 0 : 1);
}

std::vector<JsonObjectText> objects_in(const std::string& path) {
    std::vector<JsonObjectText> objects;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) objects.emplace_back(line);
    return objects;
}

class WireTraceDeathTest : public ::testing::Test {
  protected:
    TemporaryDirectory directory;
    std::string path = directory.path() + "/trace";
};

TEST_F(WireTraceDeathTest, PrintsNothingUnlessAskedTo) {
    EXPECT_EXIT(converse(nullptr), ExitedWithCode(0), StrEq(""));
    EXPECT_EXIT(converse(""), ExitedWithCode(0), StrEq(""));
}

TEST_F(WireTraceDeathTest, PrintsTheFramesOfBothDirectionsInTheirOrder) {
    EXPECT_EXIT(
        converse("1"), ExitedWithCode(0),
        MatchesRegex(kTimePattern + " <- +([0-9]+)  61 announce [0-9]+\n" +  //
                     kTimePattern + " <- +[0-9]+  18 getItem \"key\"\n" +    //
                     kTimePattern + " -> +[0-9]+   1 answer \"f\" \"a\\\\n\\\\xff\"\n" +
                     kTimePattern + " <- +[0-9]+  33 answerDelivered \"f\" \"a\\\\n\\\\xff\"\n"));
}

TEST_F(WireTraceDeathTest, PrintsAFrameThatDoesNotDecode) {
    EXPECT_EXIT(
        {
            const TracedLink host("1");
            host.write(header_bytes(1, 0, 2, 3) + "abc");
            host.write(frame_bytes(1, {}, {}));
            host.read_frame();
            std::exit(0);
        },
        ExitedWithCode(0), HasSubstr("   1 answer (items do not fit the header)\n"));
}

TEST_F(WireTraceDeathTest, AppendsJsonLinesToAFile) {
    EXPECT_EXIT(converse(path.c_str()), ExitedWithCode(0), StrEq(""));
    EXPECT_EXIT(converse(path.c_str()), ExitedWithCode(0), StrEq(""));
    const std::vector<JsonObjectText> objects = objects_in(path);
    ASSERT_THAT(objects, SizeIs(8));
    EXPECT_THAT(objects[0].integers("ints"), ElementsAre(objects[0].integer("pid")));
    EXPECT_EQ(objects[1].text("direction"), "to-host");
    EXPECT_EQ(objects[1].text("name"), "getItem");
    EXPECT_THAT(objects[1].strings("strings"), ElementsAre("key"));
    EXPECT_EQ(objects[2].text("direction"), "to-page");
    EXPECT_THAT(objects[2].strings("strings"), ElementsAre("f", "a\n\xff"));
    EXPECT_EQ(objects[3].integer("type"), 33);
    EXPECT_EQ(objects[4].text("name"), "announce");
    EXPECT_NE(objects[4].integer("pid"), objects[0].integer("pid"));
}

TEST_F(WireTraceDeathTest, OnlyTheOwnerMayReadTheFile) {
    EXPECT_EXIT(converse(path.c_str()), ExitedWithCode(0), StrEq(""));
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(WireTraceDeathTest, AFileThatCannotBeOpenedIsOneErrorLine) {
    path = directory.path() + "/missing/trace";
    EXPECT_EXIT(
        converse(path.c_str()), ExitedWithCode(0),
        StrEq("Could not write the wire's trace to " + path + ": No such file or directory\n"));
}

TEST_F(WireTraceDeathTest, AFileThatCannotBeWrittenIsOneErrorLine) {
    EXPECT_EXIT(converse("/dev/full"), ExitedWithCode(0),
                StrEq("Could not write the wire's trace to /dev/full: No space left on device\n"));
}

TEST_F(WireTraceDeathTest, WritesWhatIsQueuedWhenTheProcessExits) {
    EXPECT_EXIT(
        {
            const TracedLink host(path.c_str());
            std::thread([&host] {
                for (;;) host.read_frame();
            }).detach();
            for (int i = 0; i < 5'000; ++i) send_text(15, std::to_string(i));
            std::exit(0);
        },
        ExitedWithCode(0), StrEq(""));
    const std::vector<JsonObjectText> objects = objects_in(path);
    ASSERT_THAT(objects, SizeIs(5'001));
    EXPECT_THAT(objects.back().strings("strings"), ElementsAre("4999"));
}

TEST_F(WireTraceDeathTest, ShowsTheFrameThatAHostThatHasGoneDidNotGet) {
    EXPECT_EXIT(
        {
            TracedLink host("1");
            host.hang_up();
            send_text(18, "key");
        },
        ExitedWithCode(255), HasSubstr("  18 getItem \"key\"\n"));
}

// Both ends of a pipe that is full. Its writer waits, or with O_NONBLOCK is told to come back.
std::array<int, 2> full_pipe(int writer_flags = 0) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) == -1) std::abort();
    const std::string filler(4'096, '.');
    while (write(ends[1], filler.data(), filler.size()) > 0) {
    }
    fcntl(ends[1], F_SETFL, writer_flags);
    fcntl(ends[0], F_SETFL, 0);
    return ends;
}

// Sends 10,000 frames, and leaves with 0 if they arrive.
[[noreturn]] void send_many(const HostEnd& host) {
    constexpr int kFrames = 10'000;
    std::thread receiver([&host] {
        for (int i = 0; i < kFrames; ++i) {
            if (host.read_frame() != frame_bytes(15, {}, {std::to_string(i)})) _exit(1);
        }
    });
    for (int i = 0; i < kFrames; ++i) send_text(15, std::to_string(i));
    receiver.join();
    std::exit(0);
}

TEST_F(WireTraceDeathTest, StandardErrorThatNobodyReadsDoesNotKeepFramesBack) {
    EXPECT_EXIT(
        {
            dup2(full_pipe()[1], STDERR_FILENO);
            send_many(TracedLink("1"));
        },
        ExitedWithCode(0), "");
}

TEST_F(WireTraceDeathTest, AFifoThatNobodyReadsDoesNotKeepFramesBack) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EXIT(send_many(TracedLink(path.c_str())), ExitedWithCode(0), StrEq(""));
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EXIT(send_many(TracedLink(path.c_str())), ExitedWithCode(0), StrEq(""));
    close(reader);
}

// Standard error is a pipe whose reader goes away while the trace waits for it.
[[noreturn]] void lose_the_trace_reader() {
    std::signal(SIGPIPE, SIG_DFL);
    const std::array<int, 2> ends = full_pipe();
    dup2(ends[1], STDERR_FILENO);
    const TracedLink host("1");
    close(ends[0]);
    send_many(host);
}

TEST_F(WireTraceDeathTest, AReaderThatGoesEndsTheTraceOnly) {
    EXPECT_EXIT(lose_the_trace_reader(), ExitedWithCode(0), "");
}

// The lines written into the pipe behind its filling, up to one that holds `last`; what there is if
// nothing comes for ten seconds.
std::string lines_until(int fd, const std::string& last) {
    std::string text;
    std::array<char, 4'096> piece;
    while (text.find(last) == std::string::npos) {
        pollfd readable{fd, POLLIN, 0};
        if (poll(&readable, 1, 10'000) != 1) break;
        const ssize_t size = read(fd, piece.data(), piece.size());
        if (size <= 0) break;
        text.append(piece.data(), static_cast<std::size_t>(size));
    }
    text.erase(0, text.find_first_not_of('.'));
    return text;
}

// Sends more than the queue holds while nobody reads the trace, then reads it; leaves with 0 if
// every frame is either shown or counted.
[[noreturn]] void overflow_the_queue() {
    const std::array<int, 2> ends = full_pipe(O_NONBLOCK);
    dup2(ends[1], STDERR_FILENO);
    const TracedLink host("1");
    std::thread([&host] {
        for (;;) host.read_frame();
    }).detach();
    constexpr std::size_t kLarge = 60;
    const std::string large(1'000'000, 'x');
    for (std::size_t i = 0; i < kLarge; ++i) send_text(15, large);
    send_text(15, "the last");

    const std::string text = lines_until(ends[0], "\"the last\"\n");
    const std::string marker = "frames dropped: ";
    const std::size_t dropped = std::stoul(text.substr(text.find(marker) + marker.size()));
    const auto shown = static_cast<std::size_t>(std::ranges::count(text, '\n')) - 1;
    std::exit(dropped > 0 && shown + dropped == kLarge + 2 ? 0 : 1);
}

TEST_F(WireTraceDeathTest, SaysHowManyFramesItDropped) {
    EXPECT_EXIT(overflow_the_queue(), ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kestrel::testing
