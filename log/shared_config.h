// The settings that all processes share: a file of 516 bytes, mapped into each of them.
#pragma once

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "log/levels_and_classes.h"
#include "log/sigbus_guard.h"
#include "log/zynlog_config.h"

namespace kestrel::logging {

static_assert(std::endian::native == std::endian::little, "the file is little-endian");

struct SharedLogConfig {
    std::uint32_t flags;
    std::array<std::uint32_t, kLogClassCount> levels;
    std::array<char, kLogOutputPathSize> output_path;
    std::uint32_t rollover_size;
    std::uint32_t rollover_count;
    std::uint32_t session_max;
    std::uint32_t magic;
};
static_assert(offsetof(SharedLogConfig, levels) == 4);
static_assert(offsetof(SharedLogConfig, output_path) == 244);
static_assert(offsetof(SharedLogConfig, rollover_size) == 500);
static_assert(offsetof(SharedLogConfig, magic) == 512);
static_assert(sizeof(SharedLogConfig) == 516);

inline constexpr std::uint32_t kConfigMagic = 0x1234'5678;

// The output path of the defaults is GetLogFilePath, known only at run time.
inline constexpr SharedLogConfig kDefaultConfig{
    .flags = 0x0000'062f,
    .levels = {4},
    .output_path = {},
    .rollover_size = kLogDefaultRolloverSize,
    .rollover_count = kLogDefaultRolloverCount,
    .session_max = kLogDefaultSessions,
    .magic = kConfigMagic,
};

// Other threads and processes write the fields at any time, so each access is atomic.
inline std::uint32_t load(std::uint32_t& field) {
    return std::atomic_ref(field).load(std::memory_order_relaxed);
}
inline void store(std::uint32_t& field, std::uint32_t value) {
    std::atomic_ref(field).store(value, std::memory_order_relaxed);
}

// Cuts to the field's size, and pads with NULs: a path that fills the field has no terminator.
void set_output_path(SharedLogConfig& shared, const char* path);

// The mapped settings; null while there are none. What it points to stays readable for good, so a
// thread that is still at work during a shutdown comes to no harm.
extern constinit std::atomic<SharedLogConfig*> mapped_config;
inline SharedLogConfig* config() { return mapped_config.load(std::memory_order_acquire); }

// Maps the file and writes the defaults to it unless it carries the magic; leaves config() null on
// failure, and where the file is a symbolic link of another user. What is mapped can be read and
// written for good, even when the file is cut short: see sigbus_guard.h. Sets the process's umask
// to 022, by contract. One thread, as ZynLogInit.
void map_shared_config();

// config() becomes null. One thread.
void unmap_shared_config();

// The magic comes last: a process that sees it sees the rest.
void write_defaults(SharedLogConfig& shared);

// Calls `change` with the mapped settings. False when they cannot be changed: none are mapped, or
// the process has lost the file, at the latest during the change, and has only the defaults.
template <typename Change>
bool change_config(const Change& change) {
    SharedLogConfig* const shared = config();
    if (shared == nullptr || has_substitute()) return false;
    change(*shared);
    if (!has_substitute()) return true;
    write_defaults(*shared);
    return false;
}

// The effective level of a class; kLogFailure when unmapped, unknown or inherited from nowhere.
inline std::uint32_t working_level(std::uint32_t log_class) {
    SharedLogConfig* const shared = config();
    if (shared == nullptr) return kLogFailure;
    // The root's parent, -1, is an index out of range too.
    while (log_class < kLogClassCount) {
        const std::uint32_t level = load(shared->levels[log_class]);
        if (level != kLogInherit) return level;
        log_class = static_cast<std::uint32_t>(kClassTable[log_class].parent);
    }
    return kLogFailure;
}

}  // namespace kestrel::logging
