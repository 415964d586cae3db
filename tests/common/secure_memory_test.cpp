// The optimiser sees the implementation and must keep the stores: this program is always compiled
// with optimisation, and its definition replaces the one of the library.
#include "common/secure_memory.cpp"  // NOLINT

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/file_descriptor.h"

namespace {

constexpr const char* kSecret = "correct horse battery staple and so on, 64 bytes at the least...";

TEST(SecureMemory, SetsExactlyTheBytesGiven) {
    std::string text = "0123456789";
    LinuxCommonUtils::SecureZeroMemory(text.data() + 2, 5);
    EXPECT_EQ(text, std::string("01\0\0\0\0\000789", 10));
}

TEST(SecureMemory, IgnoresSizeZeroAndNull) {
    std::string text = "text";
    LinuxCommonUtils::SecureZeroMemory(text.data(), 0);
    EXPECT_EQ(text, "text");
    LinuxCommonUtils::SecureZeroMemory(nullptr, 10);
}

// The address of a secret that has been wiped and freed.
std::uintptr_t use_secret() {
    char* const secret = static_cast<char*>(std::malloc(std::strlen(kSecret)));
    std::memcpy(secret, kSecret, std::strlen(kSecret));
    const auto address = reinterpret_cast<std::uintptr_t>(secret);
    asm volatile("" : : "r"(secret) : "memory");  // counts as a read
    LinuxCommonUtils::SecureZeroMemory(secret, std::strlen(kSecret));
    std::free(secret);
    return address;
}

TEST(SecureMemory, KeepsStoresThatNobodyReads) {
    const std::uintptr_t address = use_secret();
    const kestrel::FileDescriptor memory(open("/proc/self/mem", O_RDONLY | O_CLOEXEC));
    // The allocator uses the first bytes of a freed block.
    constexpr std::size_t kFirst = 16;
    std::array<char, 48> bytes{};
    ASSERT_EQ(pread(memory.get(), bytes.data(), bytes.size(), static_cast<off_t>(address + kFirst)),
              static_cast<ssize_t>(bytes.size()));
    EXPECT_EQ(std::string(bytes.data(), bytes.size()), std::string(bytes.size(), '\0'));
}

}  // namespace
