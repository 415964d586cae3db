// Processes whose link is traced. Each test runs its process to the end and looks at what it left.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "ipc/send.h"
#include "tests/support/temporary_directory.h"
#include "tests/trace/json_object.h"
#include "tests/trace/traced_link.h"

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

class FrameTraceDeathTest : public ::testing::Test {
  protected:
    TemporaryDirectory directory;
    std::string path = directory.path() + "/trace";
};

TEST_F(FrameTraceDeathTest, PrintsNothingByDefault) {
    EXPECT_EXIT(converse(nullptr), ExitedWithCode(0), StrEq(""));
    EXPECT_EXIT(converse(""), ExitedWithCode(0), StrEq(""));
}

TEST_F(FrameTraceDeathTest, PrintsFramesOfBothDirectionsInOrder) {
    EXPECT_EXIT(
        converse("1"), ExitedWithCode(0),
        MatchesRegex(kTimePattern + " <- +([0-9]+)  61 announce [0-9]+\n" +  //
                     kTimePattern + " <- +[0-9]+  18 getItem \"key\"\n" +    //
                     kTimePattern + " -> +[0-9]+   1 answer \"f\" \"a\\\\n\\\\xff\"\n" +
                     kTimePattern + " <- +[0-9]+  33 answerDelivered \"f\" \"a\\\\n\\\\xff\"\n"));
}

TEST_F(FrameTraceDeathTest, PrintsAFrameThatDoesNotDecode) {
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

TEST_F(FrameTraceDeathTest, AppendsJsonLinesToAFile) {
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

TEST_F(FrameTraceDeathTest, CreatesAFileThatOnlyItsOwnerMayRead) {
    EXPECT_EXIT(converse(path.c_str()), ExitedWithCode(0), StrEq(""));
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(FrameTraceDeathTest, ReportsAFileThatCannotBeOpened) {
    path = directory.path() + "/missing/trace";
    EXPECT_EXIT(converse(path.c_str()), ExitedWithCode(0),
                StrEq("Could not write the trace file " + path + ": No such file or directory\n"));
}

TEST_F(FrameTraceDeathTest, ReportsAFileThatCannotBeWritten) {
    EXPECT_EXIT(converse("/dev/full"), ExitedWithCode(0),
                StrEq("Could not write the trace file /dev/full: No space left on device\n"));
}

TEST_F(FrameTraceDeathTest, HasWrittenAllFramesWhenTheProcessExits) {
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

TEST_F(FrameTraceDeathTest, PrintsAFrameWhoseSendFails) {
    EXPECT_EXIT(
        {
            TracedLink host("1");
            host.hang_up();
            send_text(18, "key");
        },
        ExitedWithCode(255), HasSubstr("  18 getItem \"key\"\n"));
}

// A writer that waits from then on.
void fill(int pipe) {
    const std::string filler(4'096, '.');
    fcntl(pipe, F_SETFL, O_NONBLOCK);
    while (write(pipe, filler.data(), filler.size()) > 0) {
    }
    fcntl(pipe, F_SETFL, 0);
}

// Both ends of a pipe that is full.
std::array<int, 2> full_pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) == -1) std::abort();
    fill(ends[1]);
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

TEST_F(FrameTraceDeathTest, DoesNotWaitForStandardError) {
    EXPECT_EXIT(
        {
            dup2(full_pipe()[1], STDERR_FILENO);
            send_many(TracedLink("1"));
        },
        ExitedWithCode(0), "");
}

TEST_F(FrameTraceDeathTest, ReportsAFifoWithoutReader) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EXIT(converse(path.c_str()), ExitedWithCode(0),
                StrEq("Could not write the trace file " + path + ": No such device or address\n"));
}

TEST_F(FrameTraceDeathTest, DoesNotWaitForAFifo) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EXIT(send_many(TracedLink(path.c_str())), ExitedWithCode(0), StrEq(""));
    close(reader);
}

// Standard error is a pipe whose reader goes away while the trace waits for it.
[[noreturn]] void lose_the_trace_reader() {
    std::signal(SIGPIPE, SIG_IGN);  // as WebKit's processes
    const std::array<int, 2> ends = full_pipe();
    dup2(ends[1], STDERR_FILENO);
    const TracedLink host("1");
    close(ends[0]);
    send_many(host);
}

TEST_F(FrameTraceDeathTest, EndsWhenTheReaderOfStandardErrorCloses) {
    EXPECT_EXIT(lose_the_trace_reader(), ExitedWithCode(0), "");
}

// All that is in the pipe.
std::string drain(int fd) {
    fcntl(fd, F_SETFL, O_NONBLOCK);
    std::string text;
    std::array<char, 4'096> piece;
    for (ssize_t size = 0; (size = read(fd, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<std::size_t>(size));
    }
    return text;
}

// Sends frames while nobody reads the trace, then one more; leaves with 0 if the trace tells their
// number.
[[noreturn]] void fill_the_trace() {
    const std::array<int, 2> ends = full_pipe();
    dup2(ends[1], STDERR_FILENO);
    const TracedLink host("1");
    drain(ends[0]);
    fill(ends[1]);
    for (int i = 0; i < 60; ++i) send_text(15, "dropped");
    drain(ends[0]);
    send_text(15, "the last");
    const std::string text = drain(ends[0]);
    const bool is_told = text.find("-- ") != std::string::npos &&
                         text.find("frames dropped: 61\n") != std::string::npos;
    std::exit(is_told && text.find("\"the last\"\n") != std::string::npos ? 0 : 1);
}

TEST_F(FrameTraceDeathTest, CountsDroppedFrames) {
    EXPECT_EXIT(fill_the_trace(), ExitedWithCode(0), "");
}

// A pipe takes the beginning of a long line and, once it has been read, the rest.
[[noreturn]] void write_a_long_line(const std::string& fifo) {
    const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const TracedLink host(fifo.c_str());
    drain(reader);
    const std::string large(200'000, 'x');
    std::thread([&] { send_text(15, large); }).join();
    std::string text = drain(reader);
    for (int i = 0; i < 4; ++i) {
        send_text(15, "next");
        text += drain(reader);
    }
    const bool is_whole = text.find(large + "\"]}\n") != std::string::npos;
    std::exit(is_whole && text.ends_with("\"strings\":[\"next\"]}\n") ? 0 : 1);
}

TEST_F(FrameTraceDeathTest, CompletesALineThatAFifoTookInPart) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EXIT(write_a_long_line(path), ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kestrel::testing
