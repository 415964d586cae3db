#include "tests/faults/scenario.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <utility>

#include "tests/faults/faults.h"
#include "tests/support/process.h"
#include "tests/support/process_state.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

// Shared with the child, which may end at any place.
struct Report {
    bool failed;
    bool leaks;
};

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
    return stream << fault.function << " call " << fault.nth << " fails with "
                  << strerror(fault.error);
}

Outcome run_with(const Fault& fault, const std::function<int()>& scenario) {
    const TemporaryDirectory home;
    auto* const report = static_cast<volatile Report*>(
        mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const ProcessResult result = run_in_child([&] {
        alarm(30);
        setenv("HOME", home.path().c_str(), 1);
        const std::size_t before = open_descriptors();
        static volatile Report* at_exit = nullptr;
        at_exit = report;
        std::atexit([] { at_exit->failed = has_failed(); });
        fail(fault.function, fault.nth, fault.error);
        const int status = scenario();
        report->failed = has_failed();
        fail("", 0, 0);
        report->leaks = open_descriptors() != before;
        return status;
    });
    const Outcome outcome{result.status, result.error, report->failed, report->leaks};
    munmap(const_cast<Report*>(report), sizeof(Report));
    return outcome;
}

void for_each_fault(const std::vector<std::pair<std::string_view, std::vector<int>>>& errors,
                    const std::function<int()>& scenario,
                    const std::function<void(const Fault&, const Outcome&)>& look_at) {
    constexpr int kMostCalls = 30;
    for (const auto& [function, numbers] : errors) {
        int seen = 0;
        for (const int number : numbers) {
            for (int nth = 1;; ++nth) {
                ASSERT_LE(nth, kMostCalls)
                    << function << " is called more often than the test tries";
                const Fault fault{function, nth, number};
                const Outcome outcome = run_with(fault, scenario);
                // A child that a signal ends does not report whether the call came.
                EXPECT_GE(outcome.status, 0) << fault << ": ended by a signal";
                if (!outcome.failed) break;
                ++seen;
                EXPECT_FALSE(outcome.leaks) << fault << ": leaves a descriptor open";
                look_at(fault, outcome);
            }
        }
        EXPECT_GT(seen, 0) << function << " is never called";
    }
}

}  // namespace kestrel::testing
