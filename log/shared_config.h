// The settings that all processes share: a file of 516 bytes that each process maps.
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

// Other threads and processes may write the fields at any time, so each access is atomic.
inline std::uint32_t load(std::uint32_t& field) {
    return std::atomic_ref(field).load(std::memory_order_relaxed);
}
inline void store(std::uint32_t& field, std::uint32_t value) {
    std::atomic_ref(field).store(value, std::memory_order_relaxed);
}

// Truncates to the field's size and pads with NULs: a path that fills the field has no terminator.
void set_output_path(SharedLogConfig& shared, const char* path);

// The mapped settings; null if there are none. The memory stays readable after a shutdown, so a
// thread that is still using it is safe.
extern constinit std::atomic<SharedLogConfig*> mapped_config;
inline SharedLogConfig* config() { return mapped_config.load(std::memory_order_acquire); }

// Maps the file, and writes the defaults to it unless it has the magic number; leaves config() null
// on failure, and if the file is a symbolic link of another user. The mapping stays readable and
// writable even if the file is truncated: see sigbus_guard.h. Sets the process's umask to 022, by
// contract. Called by one thread, as ZynLogInit is.
void map_shared_config();

// Sets config() to null. Called by one thread.
void unmap_shared_config();

// Writes the magic number last: a process that sees it sees all other fields.
void write_defaults(SharedLogConfig& shared);

// Calls `change` with the mapped settings. False if they are not mapped, or if the process has lost
// the file before or during the change and now has only the defaults.
template <typename Change>
bool change_config(const Change& change) {
    SharedLogConfig* const shared = config();
    if (shared == nullptr || has_substitute()) return false;
    change(*shared);
    if (!has_substitute()) return true;
    write_defaults(*shared);
    return false;
}

// The effective level of a class; kLogFailure if unmapped, unknown or if the root inherits.
inline std::uint32_t working_level(std::uint32_t log_class) {
    SharedLogConfig* const shared = config();
    if (shared == nullptr) return kLogFailure;
    // The root's parent, -1, ends the loop too.
    while (log_class < kLogClassCount) {
        const std::uint32_t level = load(shared->levels[log_class]);
        if (level != kLogInherit) return level;
        log_class = static_cast<std::uint32_t>(kClassTable[log_class].parent);
    }
    return kLogFailure;
}

}  // namespace kestrel::logging
