#include "tests/common/separate_root.h"

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

// An ordinary user may change the root as the superuser of a new user namespace.
bool enter_root(const std::string& directory) {
    const uid_t user = getuid();
    if (geteuid() != 0) {
        if (unshare(CLONE_NEWUSER) == -1) return false;
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    }
    return chroot(directory.c_str()) == 0 && chdir("/") == 0;
}

void write_all(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::string read_all(int fd) {
    std::string bytes;
    std::array<char, 4'096> piece;
    for (ssize_t got = 0; (got = read(fd, piece.data(), piece.size())) > 0;) {
        bytes.append(piece.data(), static_cast<std::size_t>(got));
    }
    return bytes;
}

}  // namespace

bool SeparateRoot::is_possible() {
    return SeparateRoot().run({}, [] { return "ran"; }).result == "ran";
}

void SeparateRoot::set_executable(const std::string& target) const {
    std::filesystem::create_directories(outside("/proc/self"));
    std::filesystem::remove(outside("/proc/self/exe"));
    std::filesystem::create_symlink(target, outside("/proc/self/exe"));
}

void SeparateRoot::set_password_file(const std::string& content) const {
    std::filesystem::create_directories(outside("/etc"));
    std::ofstream(outside("/etc/passwd")) << content;
}

SeparateRoot::Outcome SeparateRoot::run(const std::map<std::string, std::string>& environment,
                                        const std::function<std::string()>& function) const {
    std::array<int, 2> channel{};
    if (pipe(channel.data()) == -1) return {};
    const pid_t child = fork();
    if (child == 0) {
        if (enter_root(directory_.path())) {
            clearenv();
            for (const auto& [name, value] : environment) {
                setenv(name.c_str(), value.c_str(), 1);
            }
            const StderrCapture errors;
            const std::string result = function();
            write_all(channel[1], result + '\0' + errors.text());
        }
        _exit(0);
    }
    close(channel[1]);
    const std::string report = read_all(channel[0]);
    close(channel[0]);
    waitpid(child, nullptr, 0);
    const std::size_t end = report.find('\0');
    if (end == std::string::npos) return {"<no result>", ""};
    return {report.substr(0, end), report.substr(end + 1)};
}

}  // namespace kestrel::testing
