// The built kestrel-log as a viewer of the lines that other processes write.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pty.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>

#include "log/local_socket.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/program.h"
#include "tests/support/file_content.h"

namespace {

using kestrel::kError;
using kestrel::kFatal;
using kestrel::kLogKestrelExtension;
using kestrel::kLogWebkit;
using kestrel::testing::client_directory;
using kestrel::testing::kestrel_log;
using kestrel::testing::kestrel_log_command;
using kestrel::testing::Outcome;
using kestrel::testing::Program;
using testing::HasSubstr;
using testing::MatchesRegex;

std::string socket_path() { return client_directory() + "/.zynlogsocket"; }

// A viewer that listens.
class Viewer : public Program {
  public:
    explicit Viewer(std::initializer_list<std::string> arguments = {"follow"})
        : Program(kestrel_log_command(arguments)), greeting(read_error_line()) {}

    const std::string greeting;
};

void log_as(const char* process, std::uint32_t log_class, int level, const char* text) {
    const pid_t pid = fork();
    if (pid == 0) {
        std::string name = process;
        program_invocation_short_name = name.data();
        ZynLogInit();
        ZynLogSetCurrentLevel(0, 1);
        __ZynTrace(log_class, level, "", "", 0, "%s", text);
        ZynLogShutdown();
        _exit(0);
    }
    waitpid(pid, nullptr, 0);
}

// A connection to the viewer that sends any bytes.
class RawProcess {
  public:
    RawProcess() { EXPECT_TRUE(socket_.is_open()); }

    void send_bytes(const std::string& bytes) const {
        EXPECT_EQ(send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(bytes.size()));
    }

    // Whether the viewer has hung up.
    bool is_dropped() const {
        char byte = 0;
        return read(socket_.get(), &byte, 1) == 0;
    }

  private:
    const kestrel::FileDescriptor socket_ = kestrel::logging::connect_to(socket_path().c_str());
};

std::string trace_record(const std::string& text, char level = 4, char log_class = 41) {
    const std::string fields = {level, 0, log_class, 0, 7, 0};
    return std::string{static_cast<char>(23 + text.size()), 0, 1, 0} + fields +
           std::string(16, '\0') + text + '\0';
}

TEST(Follow, SaysWhereItListens) {
    EXPECT_EQ(Viewer().greeting, "kestrel-log: listening at " + kestrel::testing::home() +
                                     "//.QUOClient/.zynlogsocket\n");
}

TEST(Follow, PrintsEachLineWithItsFields) {
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
    process.send_bytes(trace_record("x"));
    EXPECT_EQ(viewer.read_line(), "1970-01-01 05:00:00.000000 ?[7] ERROR   WEBKIT  x\n");
}

TEST(Follow, AcceptsAnyNumberOfProcesses) {
    Viewer viewer;
    std::array<std::optional<RawProcess>, 200> processes;
    for (auto& process : processes) process.emplace();
    for (std::size_t index = 0; index < processes.size(); ++index) {
        processes[index]->send_bytes(trace_record(std::to_string(index)));
        EXPECT_THAT(viewer.read_line(), HasSubstr("  " + std::to_string(index) + "\n"));
    }
}

TEST(Follow, TellsProcessesApart) {
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

TEST(Follow, FiltersByClassAndThoseBelowIt) {
    Viewer viewer({"follow", "--class", "KS", "--class", "CLASS01"});
    log_as("p", kLogWebkit, kError, "no");
    log_as("p", kLogKestrelExtension, kError, "below");
    log_as("p", 0, kError, "no");
    log_as("p", 1, kError, "itself");
    EXPECT_THAT(viewer.read_line(), HasSubstr("below\n"));
    EXPECT_THAT(viewer.read_line(), HasSubstr("itself\n"));
}

TEST(Follow, RefusesToFilterByWhatIsNot) {
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

TEST(Follow, KeepsControlCharactersFromTheTerminal) {
    Viewer viewer;
    const RawProcess process;
    process.send_bytes(trace_record("a\033[2Jb\nc\td\x7f \xc2\x9b \xff \xc3\xa9\n"));
    EXPECT_THAT(viewer.read_line(),
                HasSubstr("a\\x1b[2Jb\\nc\\td\\x7f \\xc2\\x9b \\xff \xc3\xa9\n"));
}

TEST(Follow, PrintsJsonOfTextThatIsNotUtf8) {
    Viewer viewer({"follow", "--json"});
    const RawProcess process;
    process.send_bytes(trace_record("\xff"));
    EXPECT_EQ(nlohmann::json::parse(viewer.read_line())["text"], "\xef\xbf\xbd");
}

TEST(Follow, PrintsLevelsAndClassesThatHaveNoName) {
    Viewer viewer;
    const RawProcess process;
    process.send_bytes(trace_record("x", 9, 99));
    EXPECT_THAT(viewer.read_line(), HasSubstr("?[7] 9       99      x\n"));
}

TEST(Follow, PutsPiecesOfARecordTogether) {
    Viewer viewer;
    const RawProcess process;
    const std::string record = trace_record("whole");
    for (const char byte : record) process.send_bytes(std::string(1, byte));
    process.send_bytes(record + record);
    for (int line = 0; line < 3; ++line) EXPECT_THAT(viewer.read_line(), HasSubstr("whole\n"));
}

TEST(Follow, DropsAProcessThatSendsNonsenseAndGoesOn) {
    Viewer viewer;
    for (const std::string& nonsense :
         {std::string("\x00\x00\x09\x00", 4), std::string("\x00\x00\x01\x00", 4),
          std::string("\x01\x00\x02\x00x", 5)}) {
        const RawProcess process;
        process.send_bytes(nonsense);
        EXPECT_TRUE(process.is_dropped());
    }
    const RawProcess process;
    process.send_bytes(trace_record("good"));
    EXPECT_THAT(viewer.read_line(), HasSubstr("good\n"));
}

class FollowUntilSignal : public testing::TestWithParam<int> {};

TEST_P(FollowUntilSignal, EndsWellAndRemovesItsSocket) {
    Viewer viewer;
    EXPECT_TRUE(std::filesystem::exists(socket_path()));
    viewer.send_signal(GetParam());
    EXPECT_EQ(viewer.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(socket_path()));
}

INSTANTIATE_TEST_SUITE_P(Signals, FollowUntilSignal, testing::Values(SIGINT, SIGTERM));

TEST(Follow, EndsWhenNobodyReadsItsOutput) {
    Viewer viewer;
    viewer.close_output();
    EXPECT_EQ(viewer.wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(socket_path()));
}

TEST(Follow, IsOpenToItsUserOnly) {
    const Viewer viewer;
    EXPECT_EQ(std::filesystem::status(socket_path()).permissions(),
              std::filesystem::perms::owner_all);
}

TEST(Follow, GivesWayToALiveDaemon) {
    const kestrel::testing::FakeDaemon daemon;
    const Outcome outcome = kestrel_log({"follow"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("already listens at " + kestrel::testing::home()));
    EXPECT_TRUE(std::filesystem::exists(socket_path()));
}

TEST(Follow, GivesWayToAnotherViewer) {
    Viewer viewer;
    EXPECT_EQ(kestrel_log({"follow"}).status, 1);
    log_as("p", kLogWebkit, kError, "still here");
    EXPECT_THAT(viewer.read_line(), HasSubstr("still here\n"));
}

TEST(Follow, ReplacesAStaleSocket) {
    Viewer killed;
    killed.send_signal(SIGKILL);
    killed.wait();
    ASSERT_TRUE(std::filesystem::is_socket(socket_path()));
    Viewer viewer;
    log_as("p", kLogWebkit, kError, "here");
    EXPECT_THAT(viewer.read_line(), HasSubstr("here\n"));
}

TEST(Follow, LeavesAFileThatIsNoSocket) {
    kestrel::testing::write_file(socket_path(), "precious");
    const Outcome outcome = kestrel_log({"follow"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("is not a socket"));
    EXPECT_EQ(kestrel::testing::file_content(socket_path()), "precious");
}

TEST(Follow, SaysWhenThereIsNoHomeDirectory) {
    kestrel::testing::write_file(kestrel::testing::home() + "/file", "");
    setenv("HOME", (kestrel::testing::home() + "/file").c_str(), 1);
    const Outcome outcome = kestrel_log({"follow"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, "kestrel-log: there is no home directory to listen in\n");
}

TEST(Follow, LeavesASocketThatHasTakenItsPlace) {
    Viewer viewer;
    std::filesystem::remove(socket_path());
    const kestrel::testing::FakeDaemon daemon;
    viewer.send_signal(SIGTERM);
    EXPECT_EQ(viewer.wait(), 0);
    EXPECT_TRUE(std::filesystem::exists(socket_path()));
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

TEST(Follow, UsesNoColoursWhereTheyAreNotWanted) {
    setenv("NO_COLOR", "1", 1);
    EXPECT_THAT(line_on_a_terminal(), testing::Not(HasSubstr("\033[")));
}

}  // namespace
