#include "workbench/wire/trace_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <array>
#include <fstream>
#include <system_error>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/wire/message_records.h"
#include "trace/frame_json.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

std::string bytes(const MessageRecord& record) {
    return record.frame ? bytes_text(*record.frame) : "";
}

class TraceFileTest : public ::testing::Test {
  protected:
    std::vector<MessageRecord> read(const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
        TraceFile file(path);
        std::vector<MessageRecord> records;
        pieces = 1;
        while (
            file.read_piece([&](MessageRecord record) { records.push_back(std::move(record)); })) {
            ++pieces;
        }
        return records;
    }
    std::vector<std::string> notes(const std::string& content) {
        std::vector<std::string> all;
        for (const MessageRecord& record : read(content)) all.push_back(record.note);
        return all;
    }
    static std::string line(Direction direction, int pid, const webkit_message& message) {
        return frame_json(kRecordTime, direction, pid, message) + '\n';
    }

    TemporaryDirectory directory;
    const std::string path = directory.path() + "/trace.jsonl";
    int pieces = 0;
};

TEST_F(TraceFileTest, ReadsBackEachTracedMessage) {
    const std::array<std::string_view, 3> wild{"a\"\\\n\x01", "\xff\xfe", "\xc3\xbc"};
    const auto records =
        read(line(Direction::from_page, 42, *build_frame(21, std::array{-1, 2}, wild)) +
             line(Direction::to_page, 0, *build_frame(77, {}, {})));
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].time, kRecordTime);
    EXPECT_EQ(records[0].direction, Direction::from_page);
    EXPECT_EQ(records[0].pid, 42);
    EXPECT_EQ(bytes(records[0]), frame_bytes(21, {"-1", "2"}, {wild[0], wild[1], wild[2]}));
    EXPECT_EQ(records[0].size, bytes(records[0]).size());
    EXPECT_TRUE(records[0].is_exact);
    EXPECT_EQ(records[1].direction, Direction::to_page);
    EXPECT_EQ(bytes(records[1]), frame_bytes(77, {}, {}));
}

TEST_F(TraceFileTest, ReadsBackTheBytesOfAMalformedMessage) {
    const std::string malformed = header_bytes(18, 5, 0, 2) + std::string("\0\xff", 2);
    Frame frame(static_cast<webkit_message*>(std::malloc(malformed.size())));
    std::copy(malformed.begin(), malformed.end(), reinterpret_cast<char*>(frame.get()));
    const auto records = read(line(Direction::from_page, 42, *frame));
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(bytes(records[0]), malformed);
    EXPECT_TRUE(records[0].is_exact);
}

TEST_F(TraceFileTest, MarksARebuiltFrameAsInexact) {
    const auto records =
        read(R"({"time":"2026-11-21T13:03:59.000021Z","pid":42,"direction":"to-host","type":18,)"
             R"("name":"getItem","length":9,"ints":[],"strings":["key"]})"
             "\n");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_FALSE(records[0].is_exact);
    EXPECT_EQ(records[0].size, 25U);
    EXPECT_EQ(bytes(records[0]), frame_bytes(18, {}, {"key"}));
}

TEST_F(TraceFileTest, ReadsNotesAndDroppedFrames) {
    EXPECT_THAT(notes(R"({"time":"2026-11-21T13:03:59.000021Z","note":"closed"})"
                      "\n" +
                      dropped_json(kRecordTime, 42, 3) + "\n"),
                ElementsAre("closed", "frames dropped: 3"));
}

TEST_F(TraceFileTest, ReportsEachInvalidLine) {
    const std::string start = R"({"time":"2026-11-21T13:03:59.000021Z","pid":1,)";
    const std::string message = start + R"("direction":"to-host","type":1,"length":)";
    const std::array<std::pair<std::string, const char*>, 19> lines = {{
        {"", "not JSON"},
        {"hello", "not JSON"},
        {"\xff\xfe", "not JSON"},
        {"[1,2]", "not a JSON object"},
        {"{}", "no \"time\""},
        {R"({"time":"yesterday"})", "\"time\" is not a time"},
        {R"({"time":"9999-01-01T00:00:00Z","note":"x"})", "\"time\" is not a time"},
        {R"({"time":5})", "\"time\" is not a string"},
        {start + R"("note":{}})", "\"note\" is not a string"},
        {start + R"("direction":"up"})", "\"direction\" is neither to-host nor to-page"},
        {start + R"("direction":"to-page","type":1e99})", "\"type\" is not a 32-bit integer"},
        {start + R"("direction":"to-page","type":18446744073709551615})",
         "\"type\" is not a 32-bit integer"},
        {message + "-1}", "\"length\" is negative"},
        {message + R"(0,"ints":5,"strings":[]})", "\"ints\" is not an array"},
        {message + R"(0,"ints":[],"strings":[1]})", "\"strings\" is not a string"},
        {message + R"(0,"ints":[],"strings":["a\u0000"]})", "a string contains a NUL"},
        {message + R"(0,"ints":[],"strings":[{"hex":"abc"}]})", "\"hex\" is not hexadecimal"},
        {message + R"(0,"payload":{"hex":"0g"}})", "\"hex\" is not hexadecimal"},
        {R"({"a":[[[[1]]]]})", "not a trace line"},
    }};
    std::string content;
    std::vector<std::string> expected;
    for (const auto& [text, why] : lines) {
        content += text + '\n';
        expected.push_back("line " + std::to_string(expected.size() + 1) + ": " + why);
    }
    EXPECT_EQ(notes(content), expected);
}

TEST_F(TraceFileTest, ReportsAnIncompleteLastLine) {
    const std::string whole = line(Direction::from_page, 42, *build_frame(6, {}, {}));
    const auto records = read(whole + whole.substr(0, whole.size() / 2));
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(bytes(records[0]), frame_bytes(6, {}, {}));
    EXPECT_EQ(records[1].note, "line 2: not JSON");
    EXPECT_EQ(records[1].time, kRecordTime);
    EXPECT_EQ(read(whole.substr(0, whole.size() - 1)).at(0).note, "");
    EXPECT_TRUE(read("").empty());
}

TEST_F(TraceFileTest, ReadsALargeFileInPieces) {
    const std::string text(50'000, 'x');
    const std::array<std::string_view, 1> strings{text};
    const std::string one = line(Direction::from_page, 42, *build_frame(5, {}, strings));
    std::string content;
    for (int i = 0; i < 100; ++i) content += one;
    const auto records = read(content);
    ASSERT_EQ(records.size(), 100U);
    for (const MessageRecord& record : records)
        EXPECT_EQ(bytes(record), frame_bytes(5, {}, {text}));
    EXPECT_GT(pieces, 10);
}

TEST_F(TraceFileTest, LimitsTheLengthOfALine) {
    std::ofstream(path) << "{";
    ASSERT_EQ(truncate(path.c_str(), 100 << 20), 0);
    std::ofstream(path, std::ios::app) << "\n" << dropped_json(kRecordTime, 1, 2) << "\n";
    TraceFile file(path);
    std::vector<std::string> heard;
    while (file.read_piece([&](const MessageRecord& record) { heard.push_back(record.note); })) {
    }
    EXPECT_THAT(heard, ElementsAre("line 1: too long", "frames dropped: 2"));
}

TEST_F(TraceFileTest, OpensRegularFilesOnly) {
    EXPECT_THROW(TraceFile(directory.path() + "/missing"), std::system_error);
    EXPECT_THROW(TraceFile(directory.path()), std::system_error);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_THROW(TraceFile{path}, std::system_error);
}

}  // namespace
}  // namespace kestrel::testing
