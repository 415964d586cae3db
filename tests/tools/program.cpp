#include "tests/tools/program.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace kestrel::testing {

Program::Program(const std::vector<std::string>& arguments) {
    std::array<int, 2> output{};
    std::array<int, 2> error{};
    if (pipe2(output.data(), O_CLOEXEC) == -1 || pipe2(error.data(), O_CLOEXEC) == -1) {
        throw std::runtime_error("no pipe");
    }
    output_ = output[0];
    error_ = error[0];
    std::vector<char*> pointers;
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, error[1], STDERR_FILENO);
    const int result =
        posix_spawnp(&pid_, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    close(error[1]);
    if (result != 0) throw std::runtime_error("cannot start " + arguments[0]);
}

Program::~Program() {
    close_output();
    close(error_);
    if (pid_ == -1) return;
    send_signal(SIGKILL);
    wait();
}

std::string Program::read_line(int fd) {
    std::string line;
    pollfd waiting{fd, POLLIN, 0};
    while (!line.ends_with('\n') && poll(&waiting, 1, 10'000) == 1) {
        char byte = 0;
        if (read(fd, &byte, 1) != 1) break;
        line += byte;
    }
    return line;
}

void Program::close_output() {
    if (output_ != -1) close(output_);
    output_ = -1;
}

void Program::send_signal(int number) const { kill(pid_, number); }

int Program::wait() {
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

Outcome run(const std::vector<std::string>& arguments) {
    Program program(arguments);
    Outcome outcome{};
    for (std::string line = program.read_line(); !line.empty(); line = program.read_line()) {
        outcome.output += line;
    }
    for (std::string line = program.read_error_line(); !line.empty();
         line = program.read_error_line()) {
        outcome.error += line;
    }
    outcome.status = program.wait();
    return outcome;
}

std::vector<std::string> kestrel_log_command(const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {KESTREL_LOG_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

Outcome kestrel_log(const std::vector<std::string>& arguments) {
    return run(kestrel_log_command(arguments));
}

}  // namespace kestrel::testing
