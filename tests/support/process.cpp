#include "tests/support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

void require(bool ok, const char* what) {
    if (!ok) throw std::system_error(errno, std::generic_category(), what);
}

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        require(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
        reading = FileDescriptor(ends[0]);
        writing = FileDescriptor(ends[1]);
    }

    FileDescriptor reading;
    FileDescriptor writing;
};

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// `variables`, then those of the test's own that they do not replace.
std::vector<std::string> whole_environment(std::vector<std::string> variables) {
    const std::size_t given = variables.size();
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::string_view name = text.substr(0, text.find('=') + 1);
        const bool is_replaced =
            std::any_of(variables.begin(), variables.begin() + static_cast<std::ptrdiff_t>(given),
                        [&](const std::string& each) { return each.starts_with(name); });
        if (!is_replaced) variables.emplace_back(text);
    }
    return variables;
}

pid_t spawn(std::vector<std::string>& command, const ProcessOptions& options, int input, int output,
            int errors) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    std::vector<std::string> environment = whole_environment(options.environment);
    pid_t pid = -1;
    errno = posix_spawnp(&pid, command[0].c_str(), &actions, nullptr, pointers_to(command).data(),
                         pointers_to(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    require(errno == 0, command[0].c_str());
    return pid;
}

constexpr int kThrewException = 99;

[[noreturn]] void run_body(const std::function<int()>& body) {
    int status = kThrewException;
    try {
        status = body();
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "exception in a child: %s\n", exception.what());
    }
    std::fflush(nullptr);
    _exit(status);
}

// Reads without blocking; closes the pipe at the end of the stream.
void read_available(FileDescriptor& pipe, std::string& text) {
    std::array<char, 65'536> piece;
    ssize_t got = 0;
    while ((got = read(pipe.get(), piece.data(), piece.size())) > 0) {
        text.append(piece.data(), static_cast<std::size_t>(got));
    }
    const bool may_get_more = got == -1 && (errno == EAGAIN || errno == EINTR);
    if (!may_get_more) pipe = FileDescriptor();
}

// Waits for a change of this kind. Leaves the status of an ended process to be collected.
void wait_for_change(pid_t pid, int option, int code) {
    siginfo_t change{};
    const auto id = static_cast<id_t>(pid);
    require(waitid(P_PID, id, &change, option | WEXITED | WNOWAIT) == 0, "waitid");
    if (change.si_code != code) throw std::runtime_error("the process has ended");
}

}  // namespace

Process::Process(std::vector<std::string> command, const ProcessOptions& options)
    : merge_errors_(options.merge_errors) {
    start([&](int input, int output, int errors) {
        return spawn(command, options, input, output, errors);
    });
}

Process::Process(const std::function<int()>& body) {
    std::fflush(nullptr);
    start([&](int input, int output, int errors) {
        const pid_t pid = fork();
        require(pid != -1, "fork");
        if (pid == 0) {
            input_ = FileDescriptor();  // or the child would never see the end of its input
            dup2(input, STDIN_FILENO);
            dup2(output, STDOUT_FILENO);
            dup2(errors, STDERR_FILENO);
            run_body(body);
        }
        return pid;
    });
}

void Process::start(const std::function<pid_t(int, int, int)>& create) {
    Pipe input;
    Pipe output;
    Pipe errors;
    input_ = std::move(input.writing);
    output_.pipe = std::move(output.reading);
    errors_.pipe = std::move(errors.reading);
    const FileDescriptor& error_end = merge_errors_ ? output.writing : errors.writing;
    pid_ = create(input.reading.get(), output.writing.get(), error_end.get());
    for (const Stream* stream : {&output_, &errors_}) {
        fcntl(stream->pipe.get(), F_SETFL, O_NONBLOCK);
    }
    end_ = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)));
    require(end_.is_open(), "pidfd_open");
}

Process::~Process() {
    if (pid_ == -1) return;
    send_signal(SIGTERM);
    send_signal(SIGCONT);
    wait();
}

void Process::send_signal(int number) const {
    if (pid_ != -1) kill(pid_, number);
}

void Process::stop() const {
    send_signal(SIGSTOP);
    wait_for_change(pid_, WSTOPPED, CLD_STOPPED);
}

void Process::resume() const {
    send_signal(SIGCONT);
    wait_for_change(pid_, WCONTINUED, CLD_CONTINUED);
}

// False when the process has ended, with all its output read, or after a failed wait.
bool Process::read_more() {
    std::array<pollfd, 3> sources = {{{output_.pipe.get(), POLLIN, 0},
                                      {errors_.pipe.get(), POLLIN, 0},
                                      {end_.get(), POLLIN, 0}}};
    const int ready = poll(sources.data(), sources.size(), kPatience);
    if (ready == -1 && errno == EINTR) return true;
    bool has_read = false;
    for (Stream* stream : {&output_, &errors_}) {
        const std::size_t before = stream->text.size();
        if (stream->pipe.is_open()) read_available(stream->pipe, stream->text);
        has_read = has_read || stream->text.size() > before;
    }
    return ready > 0 && (has_read || sources[2].revents == 0);
}

std::string Process::read_line(Stream& stream) {
    std::size_t end = std::string::npos;
    for (;;) {
        end = stream.text.find('\n', stream.consumed);
        if (end != std::string::npos || !stream.pipe.is_open() || !read_more()) break;
    }
    const std::size_t size = end == std::string::npos ? end : end + 1 - stream.consumed;
    std::string line = stream.text.substr(stream.consumed, size);
    stream.consumed += line.size();
    return line;
}

std::string Process::wait_for_line(const std::string& text) {
    for (;;) {
        const std::size_t found = output_.text.find(text);
        const std::size_t end = output_.text.find('\n', found);
        if (found != std::string::npos && end != std::string::npos) {
            const std::size_t before = output_.text.rfind('\n', found);
            const std::size_t start = before == std::string::npos ? 0 : before + 1;
            return output_.text.substr(start, end - start);
        }
        if (!output_.pipe.is_open() || !read_more()) return "";
    }
}

int Process::wait() {
    while (read_more()) {
    }
    pollfd end{end_.get(), POLLIN, 0};
    if (poll(&end, 1, 0) == 0) send_signal(SIGKILL);
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

ProcessResult run(std::vector<std::string> command, const ProcessOptions& options) {
    Process process(std::move(command), options);
    process.close_input();
    const int status = process.wait();
    return {status, process.output(), process.errors()};
}

ProcessResult run_in_child(const std::function<int()>& body) {
    Process process(body);
    process.close_input();
    const int status = process.wait();
    return {status, process.output(), process.errors()};
}

}  // namespace kestrel::testing
