// The protocol between a process and the log daemon, over a Unix socket: the process sends a hello,
// then a record for each line. The daemon sends nothing.
//
// Every message begins with a prefix: the length of the rest, and the type. Integers are
// little-endian and not aligned; texts end with a NUL, which is counted.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace kestrel::logging {

static_assert(std::endian::native == std::endian::little, "messages are little-endian");

enum class DaemonMessageType : std::uint16_t { kRecord = 1, kHello = 2 };

struct [[gnu::packed]] MessagePrefix {
    std::uint16_t length;
    DaemonMessageType type;
};

// Followed by the name of the process.
struct [[gnu::packed]] LogDaemonHello {
    MessagePrefix prefix;
    std::uint16_t session;
};
static_assert(sizeof(LogDaemonHello) == 6);

// Followed by the text of the line.
struct [[gnu::packed]] LogRecordFields {
    MessagePrefix prefix;
    std::uint16_t level;
    std::uint16_t log_class;
    std::uint16_t thread;  // the low 16 bits of the kernel's thread id
    std::uint64_t seconds;
    std::uint64_t microseconds;
};
static_assert(offsetof(LogRecordFields, seconds) == 10);
static_assert(sizeof(LogRecordFields) == 26);

inline constexpr std::size_t kIdentSize = 32;
inline constexpr std::size_t kTextSize = 8192;

// The value of a message's length field.
constexpr std::uint16_t length_field(std::size_t message_size) {
    return static_cast<std::uint16_t>(message_size - sizeof(MessagePrefix));
}

}  // namespace kestrel::logging
