// The output of `kestrel-log follow`, with lines of other processes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/tools/program.h"
#include "tests/tools/viewer.h"

namespace {

using kestrel::kError;
using kestrel::kFatal;
using kestrel::kLogKestrelExtension;
using kestrel::kLogWebkit;
using kestrel::testing::kestrel_log;
using kestrel::testing::log_as;
using kestrel::testing::log_record;
using kestrel::testing::Outcome;
using kestrel::testing::RawProcess;
using kestrel::testing::socket_path;
using kestrel::testing::Viewer;
using testing::HasSubstr;
using testing::MatchesRegex;

TEST(Follow, PrintsFieldsOfALine) {
    Viewer viewer;
    log_as("browser", kLogWebkit, kError, "the text\n");
    EXPECT_THAT(viewer.read_line(),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6} "
                             "veltrane-browser\\[[0-9]+\\] ERROR   WEBKIT  the text\n"));
}

TEST(Follow, PrintsLocalTime) {
    setenv("TZ", "UTC-5", 1);
    Viewer viewer;
    const RawProcess process;
    process.send_bytes(log_record("x"));
    EXPECT_EQ(viewer.read_line(), "1970-01-01 05:00:00.000000 ?[7] ERROR   WEBKIT  x\n");
}

TEST(Follow, PrintsProcessNames) {
    Viewer viewer;
    log_as("first", kLogWebkit, kError, "a");
    EXPECT_THAT(viewer.read_line(), HasSubstr("veltrane-first["));
    log_as("second", kLogWebkit, kError, "b");
    EXPECT_THAT(viewer.read_line(), HasSubstr("veltrane-second["));
}

TEST(Follow, FiltersByLevel) {
    Viewer viewer({"follow", "--level", "fatal"});
    log_as("p", kLogWebkit, kError, "error");
    log_as("p", kLogWebkit, kFatal, "fatal");
    EXPECT_THAT(viewer.read_line(), HasSubstr("fatal\n"));
}

TEST(Follow, FiltersByClassAndSubclasses) {
    Viewer viewer({"follow", "--class", "KS", "--class", "CLASS01"});
    log_as("p", kLogWebkit, kError, "no");
    log_as("p", kLogKestrelExtension, kError, "below");
    log_as("p", 0, kError, "no");
    log_as("p", 1, kError, "itself");
    EXPECT_THAT(viewer.read_line(), HasSubstr("below\n"));
    EXPECT_THAT(viewer.read_line(), HasSubstr("itself\n"));
}

TEST(Follow, RejectsUnknownFilters) {
    EXPECT_EQ(kestrel_log({"follow", "--class", "NOBODY"}).status, 2);
    const Outcome outcome = kestrel_log({"follow", "--level", "NONE"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.error, HasSubstr("valid are: VERBOSE INFO WARNING ERROR FATAL AOL\n"));
    EXPECT_FALSE(std::filesystem::exists(socket_path()));
}

TEST(Follow, PrintsJson) {
    setenv("TZ", "UTC-5", 1);
    Viewer viewer({"follow", "--json"});
    log_as("browser", kLogWebkit, kError, "\"quoted\"\n");
    const auto line = nlohmann::json::parse(viewer.read_line());
    EXPECT_EQ(line["process"], "veltrane-browser");
    EXPECT_EQ(line["level"], "ERROR");
    EXPECT_EQ(line["class"], "WEBKIT");
    EXPECT_EQ(line["text"], "\"quoted\"");
    EXPECT_TRUE(line["thread"].is_number());
    EXPECT_THAT(line["time"].get<std::string>(),
                MatchesRegex("[-0-9]{10}T[:0-9]{8}\\.[0-9]{6}\\+0500"));
}

TEST(Follow, EscapesControlCharacters) {
    Viewer viewer;
    const RawProcess process;
    process.send_bytes(log_record("a\033[2Jb\nc\td\x7f \xc2\x9b \xff \xc3\xa9\n"));
    EXPECT_THAT(viewer.read_line(),
                HasSubstr("a\\x1b[2Jb\\nc\\td\\x7f \\xc2\\x9b \\xff \xc3\xa9\n"));
}

// All characters that change the direction of writing.
constexpr const char* kBidiText =
    "\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069 end";
constexpr const char* kEscapedBidiText =
    "\\u{61c}\\u{200e}\\u{200f}\\u{202a}\\u{202b}\\u{202c}\\u{202d}\\u{202e}\\u{2066}\\u{2067}"
    "\\u{2068}\\u{2069} end";

TEST(Follow, EscapesBidiCharacters) {
    Viewer viewer;
    log_as("a\u202eb", kLogWebkit, kError, kBidiText);
    EXPECT_THAT(viewer.read_line(),
                MatchesRegex(std::string(".* veltrane-a\\\\u\\{202e\\}b\\[[0-9]+\\] .*\n")));
    log_as("p", kLogWebkit, kError, kBidiText);
    EXPECT_THAT(viewer.read_line(), testing::EndsWith(std::string("  ") + kEscapedBidiText + "\n"));
}

TEST(Follow, EscapesBidiCharactersInJson) {
    Viewer viewer({"follow", "--json"});
    log_as("a\u202eb", kLogWebkit, kError, kBidiText);
    const std::string line = viewer.read_line();
    EXPECT_TRUE(std::ranges::all_of(line, [](char byte) {
        return byte == '\n' || isprint(byte) != 0;
    })) << line;
    const auto json = nlohmann::json::parse(line);
    EXPECT_EQ(json["process"], "veltrane-a\u202eb");
    EXPECT_EQ(json["text"], kBidiText);
}

TEST(Follow, ReplacesInvalidUtf8InJson) {
    Viewer viewer({"follow", "--json"});
    const RawProcess process;
    process.send_bytes(log_record("\xff"));
    EXPECT_EQ(nlohmann::json::parse(viewer.read_line())["text"], "\xef\xbf\xbd");
}

TEST(Follow, PrintsNumbersOfUnnamedLevelsAndClasses) {
    Viewer viewer;
    const RawProcess process;
    process.send_bytes(log_record("x", 9, 99));
    EXPECT_THAT(viewer.read_line(), HasSubstr("?[7] 9       99      x\n"));
}

TEST(Follow, ReassemblesFragmentedRecords) {
    Viewer viewer;
    const RawProcess process;
    const std::string record = log_record("whole");
    for (const char byte : record) process.send_bytes(std::string(1, byte));
    process.send_bytes(record + record);
    for (int line = 0; line < 3; ++line) EXPECT_THAT(viewer.read_line(), HasSubstr("whole\n"));
}

// One line of a viewer on a terminal.
std::string line_on_a_terminal() {
    int terminal = -1;
    const pid_t pid = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (pid == 0) {
        execl(KESTREL_LOG_PROGRAM, "kestrel-log", "follow", nullptr);
        _exit(127);
    }
    const auto read_line = [&] {
        std::string line;
        char byte = 0;
        while (byte != '\n' && read(terminal, &byte, 1) == 1) line += byte;
        return line;
    };
    read_line();
    log_as("p", kLogWebkit, kFatal, "coloured");
    std::string line = read_line();
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    close(terminal);
    return line;
}

TEST(Follow, UsesColoursOnATerminal) {
    unsetenv("NO_COLOR");
    EXPECT_THAT(line_on_a_terminal(), HasSubstr("\033[1;31mcoloured\033[0m"));
}

TEST(Follow, UsesNoColoursWithNoColor) {
    setenv("NO_COLOR", "1", 1);
    EXPECT_THAT(line_on_a_terminal(), testing::Not(HasSubstr("\033[")));
}

}  // namespace
