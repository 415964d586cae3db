#include "tests/common/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <system_error>

namespace kestrel::testing {
namespace {

constexpr uid_t kOrdinaryUser = 54'321;

void check(bool is_done, const char* what) {
    if (!is_done) throw std::system_error(errno, std::generic_category(), what);
}

struct Pipe {
    std::array<int, 2> ends{};

    Pipe() { check(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2"); }
    int reading() const { return ends[0]; }
    int writing() const { return ends[1]; }
};

// Reads up to `end` or the end of the stream; closes nothing.
std::string read_up_to(int fd, int end) {
    std::string text;
    for (char byte = '\0'; read(fd, &byte, 1) == 1 && byte != end;) text.push_back(byte);
    return text;
}

std::string read_all(const Pipe& pipe) {
    close(pipe.writing());
    constexpr int kNoByte = 256;
    std::string text = read_up_to(pipe.reading(), kNoByte);
    close(pipe.reading());
    return text;
}

}  // namespace

// Pipes, because the child may be unable to write files.
Output in_child(const std::function<void()>& body) {
    const Pipe out;
    const Pipe err;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(out.writing(), STDOUT_FILENO);
        dup2(err.writing(), STDERR_FILENO);
        body();
        std::fflush(nullptr);
        _exit(0);
    }
    Output output{read_all(out), read_all(err)};
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << output.err;
    return output;
}

Output as_ordinary_user(const std::function<void()>& body) {
    return in_child([&] {
        if (is_root()) {
            check(setgid(kOrdinaryUser) == 0, "setgid");
            check(setuid(kOrdinaryUser) == 0, "setuid");
        }
        body();
    });
}

bool is_root() { return geteuid() == 0; }

RunningProgram::RunningProgram(std::vector<std::string> arguments) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);

    const Pipe input;
    const Pipe output;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.reading(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.writing(), STDOUT_FILENO);
    errno = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    check(errno == 0, argv[0]);

    close(input.reading());
    close(output.writing());
    input_ = input.writing();
    output_ = output.reading();
}

RunningProgram::~RunningProgram() {
    close(input_);
    close(output_);
    waitpid(pid_, nullptr, 0);
}

std::string RunningProgram::read_line() const { return read_up_to(output_, '\n'); }

}  // namespace kestrel::testing
