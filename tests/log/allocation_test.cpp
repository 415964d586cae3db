// Counts allocations and writes: this program defines the C library's functions itself.

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/fake_daemon.h"

namespace {

constinit std::atomic<int> allocations = 0;
constinit std::atomic<int> writes = 0;

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}

ssize_t write(int fd, const void* bytes, std::size_t size) {
    ++writes;
    return syscall(SYS_write, fd, bytes, size);
}

void* realloc(void* block, std::size_t size) {
    ++allocations;
    return __libc_realloc(block, size);
}
}

namespace {

using kestrel::kLogWebkit;

TEST(Allocations, AreCounted) {
    const int before = allocations;
    const std::string text(1'000, 'x');
    EXPECT_EQ(allocations, before + 1) << text.size();
}

TEST(Allocations, LinesNeedNone) {
    const kestrel::testing::FakeDaemon daemon;
    ZynLogInit();
    const kestrel::testing::DaemonConnection connection = daemon.accept();
    const std::string text(10'000, 'x');

    const int before = allocations;
    __ZynTrace(kLogWebkit, kestrel::kError, "", "", 0, "%s %d %f", "text", 7, 1.5);
    __ZynTrace(kLogWebkit, kestrel::kInfo, "", "", 0, "suppressed");
    __ZynTrace(kLogWebkit, kestrel::kError, "", "", 0, "%s", text.c_str());
    ZynLogEnableFlags(kestrel::kLogThreadNameFlag);
    __ZynTrace(kLogWebkit, kestrel::kError, "", "", 0, "%s", text.c_str());
    EXPECT_EQ(allocations, before);
    EXPECT_FALSE(connection.is_quiet());
}

TEST(Writes, OnePerLineAndNoneIfFilteredOut) {
    const kestrel::testing::FakeDaemon daemon;
    ZynLogInit();
    const kestrel::testing::DaemonConnection connection = daemon.accept();
    const std::string text(10'000, 'x');
    ZynLogEnableFlags(kestrel::kLogThreadNameFlag);

    const int before = writes;
    __ZynTrace(kLogWebkit, kestrel::kInfo, "", "", 0, "suppressed");
    EXPECT_EQ(writes, before);
    __ZynTrace(kLogWebkit, kestrel::kError, "", "", 0, "%s", text.c_str());
    EXPECT_EQ(writes, before + 1);
}

}  // namespace
