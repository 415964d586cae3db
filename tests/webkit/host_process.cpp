#include "tests/webkit/host_process.h"

#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "tests/support/main_loop.h"

namespace kestrel::testing {

HostProcess::HostProcess(const std::string& client_directory)
    : socket_(client_directory + "/webkit_socket2"),
      record_(client_directory + "/record"),
      process_({ANSWERING_HOST, socket_, record_}) {
    if (process_.read_line() != "listening\n") throw std::runtime_error(process_.read_error_line());
}

void HostProcess::kill() {
    process_.send_signal(SIGKILL);
    if (process_.pid() != -1) process_.wait();
    unlink(socket_.c_str());
    unlink(record_.c_str());
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
    for (ReceivedFrame& frame : take_frames(unread_)) {
        frames_[frame.type].push_back(std::move(frame));
    }
}

}  // namespace kestrel::testing
