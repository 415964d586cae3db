#include "base/error_line.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <thread>

#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

TEST(ErrorLine, WritesTextAndKeepsErrno) {
    const StderrCapture errors;
    errno = EPIPE;
    error_line("one line\n");
    EXPECT_EQ(errno, EPIPE);
    EXPECT_EQ(errors.text(), "one line\n");
}

TEST(ErrorLine, DoesNotInterleaveThreads) {
    const StderrCapture errors;
    const std::string first(100, 'a');
    const std::string second(100, 'b');
    const auto write = [](const std::string& text) {
        for (int i = 0; i < 1'000; ++i) error_line(text + "\n");
    };
    std::thread other([&] { write(first); });
    write(second);
    other.join();

    const std::string text = errors.text();
    ASSERT_EQ(text.size(), 2'000 * 101U);
    for (std::size_t at = 0; at < text.size(); at += 101) {
        const std::string line = text.substr(at, 100);
        EXPECT_TRUE(line == first || line == second) << line;
    }
}

}  // namespace
}  // namespace kestrel::testing
