// A home with an empty scratch directory for locks, and the system calls of the lock, which tests
// may observe and make fail.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/common/scoped_variable.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

extern "C" int __real_flock(int fd, int operation);

namespace kestrel::testing {

// Called before each kill and flock of the code under test; the call fails with a result other than
// 0 as its errno.
extern std::function<void(pid_t)> on_kill;
extern std::function<int(int fd, int operation)> on_flock;

// A process id as stored in a lock file.
std::string lock_bytes(std::int32_t id);

// Tries to acquire the lock, and prints "owner" or "running".
void print_lock_state(const std::string& name);

class LockTest : public ::testing::Test {
  protected:
    TemporaryDirectory home_;
    ScopedVariable home_variable_{"HOME", home_.path()};
    std::string scratch_ = home_.path() + "/.QUOClient/.tmp";
    std::string lock_ = scratch_ + "/.catalook.lock";

    void SetUp() override;
    void TearDown() override;

    void write_lock(const std::string& bytes) const;

    std::string advice(const std::string& name = "catalook") const;
};

}  // namespace kestrel::testing
