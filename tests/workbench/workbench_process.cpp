#include "tests/workbench/workbench_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>

#include "workbench/string_pointers.h"

namespace kestrel::testing {
namespace {

constexpr int kTimeout = 30'000;  // milliseconds

void require(int error, const char* what) {
    if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

// The environment of this process with these variables replaced.
std::vector<std::string> environment_with(std::vector<std::string> variables) {
    const std::size_t given = variables.size();
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view name =
            std::string_view(*variable).substr(0, std::string_view(*variable).find('=') + 1);
        const bool is_given =
            std::any_of(variables.begin(), variables.begin() + given,
                        [&](const std::string& each) { return each.starts_with(name); });
        if (!is_given) variables.emplace_back(*variable);
    }
    return variables;
}

}  // namespace

WorkbenchProcess::WorkbenchProcess(std::vector<std::string> arguments,
                                   const std::string& temporary_directory,
                                   const std::string& data_directory) {
    std::array<int, 2> ends{};
    require(pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);

    arguments.insert(arguments.begin(), WORKBENCH_PROGRAM);
    std::vector<std::string> environment =
        environment_with({"TMPDIR=" + temporary_directory, "XDG_DATA_HOME=" + data_directory});
    const int error = posix_spawn(&pid_, WORKBENCH_PROGRAM, &actions, nullptr,
                                  pointers_to(arguments).data(), pointers_to(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    pipe_ = ends[0];
    require(error, WORKBENCH_PROGRAM);
}

WorkbenchProcess::~WorkbenchProcess() {
    if (pid_ != -1) send_signal(SIGTERM);
    if (pid_ != -1) wait_for_end();
    close(pipe_);
}

bool WorkbenchProcess::read_more() {
    pollfd readable{pipe_, POLLIN, 0};
    if (poll(&readable, 1, kTimeout) == 0) send_signal(SIGKILL);
    std::array<char, 4'096> piece;
    const ssize_t got = read(pipe_, piece.data(), piece.size());
    if (got > 0) output_.append(piece.data(), static_cast<std::size_t>(got));
    return got > 0;
}

std::string WorkbenchProcess::wait_for_line(const std::string& text) {
    for (;;) {
        const std::size_t found = output_.find(text);
        const std::size_t end = output_.find('\n', found);
        if (found != std::string::npos && end != std::string::npos) {
            const std::size_t start = output_.rfind('\n', found) + 1;
            return output_.substr(start, end - start);
        }
        if (!read_more()) return "";
    }
}

int WorkbenchProcess::wait_for_end() {
    while (read_more()) {
    }
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void WorkbenchProcess::send_signal(int signal) const { kill(pid_, signal); }

}  // namespace kestrel::testing
