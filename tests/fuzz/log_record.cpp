// The shared settings file with any content. The first byte selects how far the file is truncated
// while it is mapped.
#include "log/log_record.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>

#include "log/shared_config.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"
#include "tests/support/temporary_directory.h"

namespace {

[[gnu::format(printf, 1, 2)]] void trace(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const kestrel::logging::LogRecord record(kestrel::kLogWebkit, kestrel::kError, format,
                                             arguments);
    va_end(arguments);
    kestrel::fuzz::check(record.bytes().back() == '\0');
}

void look_at_everything() {
    for (std::uint32_t i = 0; i < kestrel::kLogClassCount + 2; ++i) {
        ZynLogGetCurrentLevel(i);
        ZynLogGetWorkingLevel(i);
        ZynLogGetParent(i);
        ZynLogGetClassName(i);
    }
    std::uint32_t flags = 0;
    ZynLogGetCurrentFlags(&flags);
    const char* const path = ZynLogGetOutputPath();
    kestrel::fuzz::check(path != nullptr &&
                         strnlen(path, kestrel::kLogOutputPathSize) <= kestrel::kLogOutputPathSize);
    ZynLogGetRolloverSize();
    ZynLogGetRolloverCount();
    ZynLogGetSessionMax();
    trace("%d", 1);
    ZynLogSetCurrentLevel(kestrel::kLogWebkit, 1);
    ZynLogEnableFlags(1);
    ZynLogSetOutputPath("/tmp/other.log");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kestrel::testing::TemporaryDirectory home;
    setenv("HOME", home.path().c_str(), 1);
    const char* const path = GetConfigFilePath();
    kestrel::fuzz::Input input(data, size);
    const std::size_t kept = input.byte() * 3;
    std::ofstream(path, std::ios::binary) << input.rest();

    kestrel::fuzz::check(ZynLogInitConfigOnly() == 1);
    look_at_everything();
    kestrel::fuzz::check(truncate(path, static_cast<off_t>(kept)) == 0);
    look_at_everything();
    ZynLogShutdown();
    return 0;
}
