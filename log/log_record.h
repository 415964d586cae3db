#pragma once

#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <span>

#include "log/daemon_protocol.h"

namespace kestrel::logging {

// A serialised log record, with the current time and the calling thread. About 8 KB, for the stack;
// only the used part is initialised.
class LogRecord {
  public:
    [[gnu::format(printf, 4, 0)]] LogRecord(std::uint32_t log_class, int level, const char* format,
                                            std::va_list arguments);

    std::span<const char> bytes() const { return {bytes_.data(), size_}; }

  private:
    [[gnu::format(printf, 2, 3)]] void append(const char* format, ...);
    [[gnu::format(printf, 2, 0)]] void append_v(const char* format, std::va_list arguments);
    void append_thread_name();
    void fill_in_fields(std::uint32_t log_class, int level);

    std::array<char, sizeof(LogRecordFields) + kTextSize> bytes_;
    std::size_t size_;  // of fields, text and its NUL
};

}  // namespace kestrel::logging
