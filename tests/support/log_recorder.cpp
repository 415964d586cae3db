#include "tests/support/log_recorder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "log/zynlog.h"
#include "tests/support/wait_until.h"

namespace {

// Never destroyed: a detached reader may log while the test program exits.
struct Record {
    std::mutex lock;
    std::condition_variable changed;
    std::vector<kestrel::testing::LogLine> lines;
    int shutdowns = 0;
};

Record& record() {
    static Record* const instance = new Record;
    return *instance;
}

}  // namespace

int ZynLogInit() { return 1; }

void ZynLogShutdown() {
    const std::scoped_lock guard(record().lock);
    ++record().shutdowns;
}

void __ZynTrace(std::uint32_t log_class, int level, const char* aux1, const char* aux2,
                std::uint64_t aux3, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    __ZynTraceV(log_class, level, aux1, aux2, aux3, format, arguments);
    va_end(arguments);
}

void __ZynTraceV(std::uint32_t log_class, int level, const char* /*aux1*/, const char* /*aux2*/,
                 std::uint64_t /*aux3*/, const char* format, std::va_list arguments) {
    std::array<char, 8192> text;
    std::vsnprintf(text.data(), text.size(), format, arguments);
    const std::scoped_lock guard(record().lock);
    record().lines.push_back({log_class, level, text.data()});
    record().changed.notify_all();
}

namespace kestrel::testing {

std::vector<LogLine> logged(int lowest_level) {
    const std::scoped_lock guard(record().lock);
    std::vector<LogLine> lines = record().lines;
    std::erase_if(lines, [&](const LogLine& line) { return line.level < lowest_level; });
    return lines;
}

void clear_log() {
    const std::scoped_lock guard(record().lock);
    record().lines.clear();
    record().shutdowns = 0;
}

bool wait_for_log(const std::string& text) {
    std::unique_lock guard(record().lock);
    return record().changed.wait_for(guard, std::chrono::milliseconds(kPatience), [&] {
        return std::ranges::any_of(record().lines,
                                   [&](const LogLine& line) { return line.text == text; });
    });
}

int log_shutdowns() {
    const std::scoped_lock guard(record().lock);
    return record().shutdowns;
}

}  // namespace kestrel::testing
