// Calls, answers, scripts, reloads and navigations, for as long as KESTREL_SOAK says: the number of
// calls, 20,000 unless set. Nothing is lost, the order is kept, memory and descriptors stay flat.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

constexpr int kCallsAPage = 1'000;
constexpr std::size_t kAnswersAPage = 200;

// The sanitizer keeps it for a while, and watches it.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kFreedMemoryGoesBack = false;
#else
constexpr bool kFreedMemoryGoesBack = true;
#endif

int wanted_calls() {
    const char* const wanted = std::getenv("KESTREL_SOAK");
    return wanted == nullptr ? 20'000 : std::atoi(wanted);
}

class Soak : public ConnectedStoreTest {
  protected:
    std::string process_directory() const {
        return "/proc/" + std::string(host.frames(61).back().payload.c_str());
    }

    std::ptrdiff_t descriptors() const {
        return std::distance(std::filesystem::directory_iterator(process_directory() + "/fd"), {});
    }

    // Of the process's own pages, in kilobytes.
    long resident() const {
        std::ifstream file(process_directory() + "/status");
        std::string word;
        while (file >> word && word != "RssAnon:") {
        }
        long kilobytes = 0;
        file >> kilobytes;
        return kilobytes;
    }

    // A page's calls, with answers and scripts meanwhile, and a check of all that has come.
    void visit_page(int page) {
        if (page % 3 == 2) {
            store.reload();
        } else {
            store.load("<title>store</title>");
        }
        ASSERT_FALSE(store.process_has_gone());
        host.forget_frames();
        store.evaluate("window.answered = []; setTimeout(() => { for (let i = 0; i < " +
                       std::to_string(kCallsAPage) +
                       "; i += 2) { external.sendAction(i);"
                       " external.setItem('k' + i, 'v'.repeat(i % 700), 'done') } }, 0)");
        for (std::size_t i = 0; i < kAnswersAPage; ++i) {
            host.send(1, {"(() => answered.push(" + std::to_string(i) + "))"});
            if (i % 10 == 0) host.send(0, {"window.last = " + std::to_string(i)});
        }
        ASSERT_TRUE(host.wait_for(5, kCallsAPage / 2));
        ASSERT_TRUE(host.wait_for(19, kCallsAPage / 2));
        ASSERT_TRUE(host.wait_for(33, kAnswersAPage));
        int next = 0;
        for (const ReceivedFrame& frame : host.frames(5)) {
            ASSERT_EQ(frame.payload, std::to_string(next) + '\0');
            next += 2;
        }
        EXPECT_EQ(store.evaluate("answered.length + ' ' + answered.every((v, i) => v === i)"),
                  std::to_string(kAnswersAPage) + " true");
    }
};

TEST_F(Soak, StaysFlatAndLosesNothing) {
    const int pages = std::max(wanted_calls() / kCallsAPage, 10);
    const int warm_up = pages / 4;  // WebKit's caches and compilers fill up
    std::ptrdiff_t descriptors_then = 0;
    long resident_then = 0;
    for (int page = 0; page < pages; ++page) {
        ASSERT_NO_FATAL_FAILURE(visit_page(page)) << "page " << page;
        if (page != warm_up) continue;
        descriptors_then = descriptors();
        resident_then = resident();
    }
    std::printf("%d calls: %td descriptors, then %td; %ld KB resident, then %ld\n",
                pages * kCallsAPage, descriptors_then, descriptors(), resident_then, resident());
    EXPECT_LE(descriptors(), descriptors_then + 8);
    // WebKit keeps pages for going back, and collects when it likes.
    if (kFreedMemoryGoesBack) {
        EXPECT_LE(resident(), resident_then + 30'000);
    }
}

}  // namespace
}  // namespace kestrel::testing
