// A host in another process that is stopped and resumed, or killed, while a page calls it.
#include "tests/webkit/host_process.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "tests/support/stderr_capture.h"
#include "tests/support/wait_until.h"
#include "tests/webkit/store_fixture.h"
#include "tests/webkit/web_process.h"

namespace kestrel::testing {
namespace {

// 14 MB in frames of many sizes, more than the socket buffers.
constexpr std::size_t kCalls = 1'400;
constexpr std::size_t kRounds = 4;
constexpr int kStopsARound = 20;

std::string value_of(std::size_t key) { return std::string(key * 37 % 20'011, 'v'); }

class HostProcessTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories(directory);
        connect();
    }

    // Starts a host and connects a page to it.
    void connect() {
        host.emplace(directory);
        store.load("<title>store</title>");
        ASSERT_TRUE(host->wait_for(61));
        store.evaluate(
            "window.answers = []; window.answered = key => answers.push(key);"
            "window.call = from => setTimeout(() => {"
            "  for (let key = from; key < from + " +
            std::to_string(kCalls) +
            "; ++key) external.setItem(key, 'v'.repeat(key * 37 % 20011), 'done') }, 0)");
    }

    // Begins kCalls calls to a stopped host, and returns when the page is blocked.
    void call_and_wait(std::size_t from) {
        host->stop();
        store.evaluate("call(" + std::to_string(from) + ")");
        ASSERT_TRUE(page_waits_for_host(announced(*host)));
    }

    // The page checks the order of the host's answers and reports every ten thousandth.
    void expect_answers(const std::string& action, std::size_t count) {
        constexpr std::size_t kStep = 10'000;
        const std::string all = std::to_string(count);
        store.evaluate(
            "window.next = 0; window.answered = key => { if (key === next) ++next;"
            "  if (next % 10000 === 0 || next === " +
            all +
            ") external.refresh() };"
            "external.sendAction('" +
            action + " " + all + "')");
        for (std::size_t told = 1; told <= (count + kStep - 1) / kStep; ++told) {
            ASSERT_TRUE(host->wait_for(7, told)) << store.evaluate("next");
        }
        EXPECT_FALSE(store.process_has_gone());
    }

    const std::string directory = std::string(g_get_home_dir()) + "/.QUOClient";
    const StderrCapture captured;  // before the web process starts, which inherits it
    StoreView store;
    std::optional<HostProcess> host;
};

TEST_F(HostProcessTest, ReceivesAllCallsInOrderAcrossStops) {
    for (std::size_t round = 0; round < kRounds; ++round) {
        const std::size_t all = (round + 1) * kCalls;
        ASSERT_NO_FATAL_FAILURE(call_and_wait(round * kCalls));
        for (int stop = 0; stop < kStopsARound && host->frames(19).size() < all; ++stop) {
            const std::size_t taken = host->bytes();
            host->resume();
            ASSERT_TRUE(wait_until([&] { return host->bytes() > taken; }));
            host->stop();
        }
        host->resume();
        ASSERT_TRUE(host->wait_for(33, all));
    }
    const std::vector<ReceivedFrame> calls = host->frames(19);
    ASSERT_EQ(calls.size(), kRounds * kCalls);
    for (std::size_t key = 0; key < calls.size(); ++key) {
        ASSERT_EQ(calls[key].payload,
                  std::to_string(key) + '\0' + value_of(key) + '\0' + "done" + '\0');
    }
    EXPECT_EQ(store.evaluate("answers.length + ' ' + answers.every((key, i) => key === i)"),
              std::to_string(kRounds * kCalls) + " true");
    EXPECT_FALSE(store.process_has_gone());
}

// KESTREL_FLOOD sets the number of answers: a million take a minute.
std::size_t flood_size() {
    const char* const wanted = std::getenv("KESTREL_FLOOD");
    return wanted == nullptr ? 30'000 : std::stoul(wanted);
}

TEST_F(HostProcessTest, DeliversAFloodOfAnswers) { expect_answers("flood", flood_size()); }

TEST_F(HostProcessTest, DeliversAnswersWithSplitHeaders) { expect_answers("split", 300); }

TEST_F(HostProcessTest, EndsTheWebProcessWhenKilledInTheMiddleOfACall) {
    ASSERT_NO_FATAL_FAILURE(call_and_wait(0));
    const pid_t first = announced(*host);
    host->kill();
    ASSERT_TRUE(run_main_loop_until([this] { return store.process_has_gone(); }));
    connect();
    EXPECT_NE(announced(*host), first);
    store.evaluate("call(0)");
    EXPECT_TRUE(host->wait_for(33, kCalls));
}

}  // namespace
}  // namespace kestrel::testing
