#include "tests/webkit/host_process.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "tests/support/main_loop.h"

namespace kestrel::testing {

HostProcess::HostProcess(const std::string& client_directory)
    : socket_(client_directory + "/webkit_socket2"), record_(client_directory + "/record") {
    std::string program = ANSWERING_HOST;
    const std::array<char*, 4> arguments = {program.data(), socket_.data(), record_.data(),
                                            nullptr};
    const int error =
        posix_spawn(&pid_, program.c_str(), nullptr, nullptr, arguments.data(), environ);
    if (error != 0) throw std::system_error(error, std::generic_category(), program);
    if (!run_main_loop_until([this] { return std::filesystem::exists(socket_); })) {
        die();
        throw std::runtime_error("the host does not listen");
    }
}

void HostProcess::stop() const {
    kill(pid_, SIGSTOP);
    if (!WIFSTOPPED(change(WUNTRACED))) throw std::runtime_error("the host has gone");
}

void HostProcess::resume() const {
    kill(pid_, SIGCONT);
    if (!WIFCONTINUED(change(WCONTINUED))) throw std::runtime_error("the host has gone");
}

void HostProcess::die() {
    if (pid_ == -1) return;
    kill(pid_, SIGKILL);
    change(0);
    pid_ = -1;
    unlink(socket_.c_str());
    unlink(record_.c_str());
}

int HostProcess::change(int options) const {
    int status = 0;
    if (waitpid(pid_, &status, options) == -1) {
        throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    return status;
}

bool HostProcess::wait_for(int type, std::size_t count) {
    return run_main_loop_until([&] { return frames(type).size() >= count; });
}

std::size_t HostProcess::bytes() const { return std::filesystem::file_size(record_); }

const std::vector<ReceivedFrame>& HostProcess::frames(int type) {
    read_record();
    return frames_[type];
}

void HostProcess::read_record() {
    std::ifstream file(record_, std::ios::binary);
    file.seekg(read_);
    std::string more(bytes() - static_cast<std::size_t>(read_), '\0');
    file.read(more.data(), static_cast<std::streamsize>(more.size()));
    read_ += file.gcount();
    unread_.append(more, 0, static_cast<std::size_t>(file.gcount()));
    std::array<int, 4> header{};
    std::size_t at = 0;
    while (unread_.size() - at >= sizeof header) {
        std::memcpy(header.data(), unread_.data() + at, sizeof header);
        const std::size_t length = sizeof header + static_cast<std::size_t>(header[3]);
        if (unread_.size() - at < length) break;
        frames_[header[0]].push_back(
            {header[0], unread_.substr(at + sizeof header, length - sizeof header)});
        at += length;
    }
    unread_.erase(0, at);
}

}  // namespace kestrel::testing
