#include "log/log_record.h"

#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/errno_guard.h"
#include "log/shared_config.h"

namespace kestrel::logging {

LogRecord::LogRecord(std::uint32_t log_class, int level, const char* format, std::va_list arguments)
    : size_(sizeof(LogRecordFields) + 1) {
    bytes_[sizeof(LogRecordFields)] = '\0';
    std::uint32_t flags = 0;
    ZynLogGetCurrentFlags(&flags);
    if ((flags & kLogThreadNameFlag) != 0) append_thread_name();
    append_v(format, arguments);
    fill_in_fields(log_class, level);
}

void LogRecord::append(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    append_v(format, arguments);
    va_end(arguments);
}

void LogRecord::append_v(const char* format, std::va_list arguments) {
    char* const end = bytes_.data() + size_ - 1;
    const std::size_t room = bytes_.size() - size_ + 1;
    if (room <= 1) return;
    const int length = std::vsnprintf(end, room, format, arguments);
    if (length < 0) {
        *end = '\0';  // a text that cannot be converted is omitted
        return;
    }
    size_ += std::min(static_cast<std::size_t>(length), room - 1);
}

void LogRecord::append_thread_name() {
    const ErrnoGuard errno_guard;  // the caller's format may contain %m
    std::array<char, 16> name{};
    if (pthread_getname_np(pthread_self(), name.data(), name.size()) != 0) name[0] = '\0';
    append("[%s]: ", name.data());
}

void LogRecord::fill_in_fields(std::uint32_t log_class, int level) {
    timeval now{};
    gettimeofday(&now, nullptr);
    const LogRecordFields fields{
        .prefix = {length_field(size_), DaemonMessageType::kRecord},
        .level = static_cast<std::uint16_t>(level),
        .log_class = static_cast<std::uint16_t>(log_class),
        .thread = static_cast<std::uint16_t>(syscall(SYS_gettid)),
        .seconds = static_cast<std::uint64_t>(now.tv_sec),
        .microseconds = static_cast<std::uint64_t>(now.tv_usec),
    };
    std::memcpy(bytes_.data(), &fields, sizeof fields);
}

}  // namespace kestrel::logging
