#include "log/zynlog.h"

#include <atomic>

namespace {

constinit std::atomic<bool> initialised = false;

}  // namespace

int ZynLogInit() {
    initialised = true;
    return 1;
}

void ZynLogShutdown() { initialised = false; }

void __ZynTrace(std::uint32_t log_class, int level, const char* aux1, const char* aux2,
                std::uint64_t aux3, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    __ZynTraceV(log_class, level, aux1, aux2, aux3, format, arguments);
    va_end(arguments);
}

// Lines are filtered out: no destination is connected yet.
void __ZynTraceV(std::uint32_t /*log_class*/, int level, const char* aux1, const char* aux2,
                 std::uint64_t /*aux3*/, const char* format, std::va_list /*arguments*/) {
    if (!initialised || aux1 == nullptr || aux2 == nullptr || format == nullptr) return;
    if (level < kestrel::kVerbose || level > kestrel::kAlwaysOn) return;
}
