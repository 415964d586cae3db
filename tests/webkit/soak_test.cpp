// Calls, answers, scripts and navigations over a long time: no message is lost or reordered, and
// neither descriptors nor memory leak. KESTREL_SOAK is the number of calls, 40,000 unless set.
//
// 1 KB leaked per navigation or per thousand calls fails the test: in the short form if the code
// under test allocated it or if it is part of the JavaScript heap. Strings and other objects of
// WebKit have an allocator of their own. With KESTREL_SOAK set, WebKit uses malloc for them, and
// the figures include them; its caches then vary by 200 KB, so it takes 1,000,000 calls.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

constexpr int kCallsPerPage = 1'000;
constexpr std::size_t kAnswersPerPage = 200;
constexpr long kMostBytesPerPage = 512;

// Before main, and so before there are threads. A thread's cache of freed memory counts as in use.
[[gnu::constructor]] void set_allocators() {
    setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0", 1);
    if (std::getenv("KESTREL_SOAK") != nullptr) setenv("Malloc", "1", 1);
}

int wanted_pages() {
    const char* const calls = std::getenv("KESTREL_SOAK");
    return std::max((calls == nullptr ? 40'000 : std::atoi(calls)) / kCallsPerPage, 40);
}

// Of the web process, after a collection.
struct Usage {
    long malloc_bytes;
    long script_bytes;
    long protected_values;
};

long least(const std::vector<Usage>& usages, int from, int to, long Usage::*figure) {
    return (*std::ranges::min_element(usages.begin() + from, usages.begin() + to, {}, figure)).*
           figure;
}

class Soak : public ConnectedStoreTest {
  protected:
    static void SetUpTestSuite() { extension_directory = PROBED_EXTENSIONS; }

    std::ptrdiff_t descriptors() const {
        const std::string process = host.frames(61).back().payload.c_str();
        return std::distance(std::filesystem::directory_iterator("/proc/" + process + "/fd"), {});
    }

    Usage usage() {
        Usage usage{};
        std::istringstream(store.evaluate("memoryInUse().join(' ')")) >> usage.malloc_bytes >>
            usage.script_bytes >> usage.protected_values;
        return usage;
    }

    // A new page with calls, answers and scripts, all of which are checked.
    void visit_page(int page) {
        if (page % 3 == 2) {
            store.reload();
        } else {
            store.load("<title>store</title>");
        }
        ASSERT_FALSE(store.process_has_gone());
        host.forget_frames();
        store.evaluate("window.answered = []; setTimeout(() => { for (let i = 0; i < " +
                       std::to_string(kCallsPerPage) +
                       "; i += 2) { external.sendAction(i);"
                       " external.setItem('k' + i, 'v'.repeat(i % 700), 'done') } }, 0)");
        for (std::size_t i = 0; i < kAnswersPerPage; ++i) {
            host.send(1, {"(() => answered.push(" + std::to_string(i) + "))"});
            if (i % 10 == 0) host.send(0, {"window.last = " + std::to_string(i)});
        }
        ASSERT_TRUE(host.wait_for(5, kCallsPerPage / 2));
        ASSERT_TRUE(host.wait_for(19, kCallsPerPage / 2));
        ASSERT_TRUE(host.wait_for(33, kAnswersPerPage));
        int next = 0;
        for (const ReceivedFrame& frame : host.frames(5)) {
            ASSERT_EQ(frame.payload, std::to_string(next) + '\0');
            next += 2;
        }
        EXPECT_EQ(store.evaluate("answered.length + ' ' + answered.every((v, i) => v === i)"),
                  std::to_string(kAnswersPerPage) + " true");
    }
};

TEST_F(Soak, LosesNoMessagesAndLeaksNothing) {
    const int pages = wanted_pages();
    std::vector<Usage> usages;
    std::ptrdiff_t descriptors_after_warm_up = 0;
    for (int page = 0; page < pages; ++page) {
        ASSERT_NO_FATAL_FAILURE(visit_page(page)) << "page " << page;
        usages.push_back(usage());
        ASSERT_GT(usages.back().script_bytes, 0) << "no figures";
        if (page == pages / 4) descriptors_after_warm_up = descriptors();
    }
    EXPECT_LE(descriptors(), descriptors_after_warm_up + 8);

    // From the second quarter of the pages to the last. The least of each quarter: the collector
    // sometimes keeps a page a little longer.
    const auto growth = [&](long Usage::*figure) {
        return least(usages, pages * 3 / 4, pages, figure) -
               least(usages, pages / 4, pages / 2, figure);
    };
    std::printf("growth over %d pages: %ld B by malloc, %ld B of script, %ld protected values\n",
                pages / 2, growth(&Usage::malloc_bytes), growth(&Usage::script_bytes),
                growth(&Usage::protected_values));
    EXPECT_LE(growth(&Usage::malloc_bytes), kMostBytesPerPage * pages / 2);
    EXPECT_LE(growth(&Usage::script_bytes), kMostBytesPerPage * pages / 2);
    EXPECT_LE(growth(&Usage::protected_values), pages / 4);
}

}  // namespace
}  // namespace kestrel::testing
