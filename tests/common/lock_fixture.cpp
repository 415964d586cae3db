#include "tests/common/lock_fixture.h"

#include <array>
#include <bit>
#include <cerrno>
#include <fstream>
#include <iostream>

#include "common/LinuxCommonUtils.h"

namespace fs = std::filesystem;

namespace kestrel::testing {

std::function<void(pid_t)> on_kill;
std::function<int(int fd, int operation)> on_flock;

std::string lock_bytes(std::int32_t id) {
    const auto bytes = std::bit_cast<std::array<char, sizeof id>>(id);
    return {bytes.begin(), bytes.end()};
}

void print_lock_state(const std::string& name) {
    std::cout << (LinuxCommonUtils::IsAnotherInstanceRunning(name) ? "running" : "owner");
}

void LockTest::SetUp() {
    fs::permissions(home_.path(), fs::perms{0755});
    fs::create_directories(scratch_);
}

void LockTest::TearDown() {
    on_kill = nullptr;
    on_flock = nullptr;
}

void LockTest::write_lock(const std::string& bytes) const { std::ofstream(lock_) << bytes; }

std::string LockTest::advice(const std::string& name) const {
    return "Failed to check if another Key Warden exist\nPlease remove" + scratch_ + "/." + name +
           ".lock file and kill any '" + name + "' which is running.\n";
}

}  // namespace kestrel::testing

using kestrel::testing::on_flock;
using kestrel::testing::on_kill;

extern "C" int __real_kill(pid_t, int);
extern "C" int __wrap_kill(pid_t process, int signal) {
    if (on_kill) on_kill(process);
    return __real_kill(process, signal);
}

extern "C" int __wrap_flock(int fd, int operation) {
    errno = on_flock ? on_flock(fd, operation) : 0;
    return errno == 0 ? __real_flock(fd, operation) : -1;
}
