#include "tests/tools/viewer.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "log/local_socket.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/machine.h"

namespace kestrel::testing {

std::string socket_path() { return client_directory() + "/.zynlogsocket"; }

Viewer::Viewer(const std::vector<std::string>& arguments)
    : Program(kestrel_log_command(arguments)), greeting(read_error_line()) {}

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

RawProcess::RawProcess() : socket_(logging::connect_to(socket_path().c_str())) {
    EXPECT_TRUE(socket_.is_open());
}

void RawProcess::send_bytes(const std::string& bytes) const {
    EXPECT_EQ(send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
}

bool RawProcess::is_dropped() const {
    char byte = 0;
    return read(socket_.get(), &byte, 1) == 0;
}

std::string log_record(const std::string& text, char level, char log_class) {
    const std::string fields = {level, 0, log_class, 0, 7, 0};
    return std::string{static_cast<char>(23 + text.size()), 0, 1, 0} + fields +
           std::string(16, '\0') + text + '\0';
}

}  // namespace kestrel::testing
