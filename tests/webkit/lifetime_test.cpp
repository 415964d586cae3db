// Hosts that start late, end early or stop reading.
#include <filesystem>

#include "tests/support/stderr_capture.h"
#include "tests/webkit/store_fixture.h"
#include "tests/webkit/web_process.h"

namespace kestrel::testing {
namespace {

using ::testing::HasSubstr;

using Host = StoreTest;
using ConnectedHost = ConnectedStoreTest;

TEST_F(Host, MayStartLate) {
    StoreView store;
    store.load("");
    ASSERT_EQ(store.evaluate("typeof external.getItem"), "function");
    host.listen();
    ASSERT_TRUE(host.wait_for(61));
    store.evaluate("external.refresh()");
    EXPECT_TRUE(host.wait_for(7));
}

TEST_F(ConnectedHost, KeepsItsPageWhenItEnds) {
    host.hang_up();
    EXPECT_EQ(store.evaluate("6 * 7"), "42");
}

TEST_F(Host, ResetIsReportedAsAReadError) {
    const StderrCapture captured;  // before the web process starts, which inherits it
    host.listen();
    StoreView store;
    store.load("");
    ASSERT_TRUE(host.wait_for(61));
    host.pause();
    store.evaluate("external.refresh()");
    host.hang_up();  // with the call unread
    EXPECT_TRUE(run_main_loop_until([&] {
        return captured.text().find(
                   "                        in webkit_client Connection reset by "
                   "peer\n") != std::string::npos;
    }));
    EXPECT_EQ(store.evaluate("6 * 7"), "42");
}

TEST_F(ConnectedHost, EndsTheWebProcessAtACallAfterItsEnd) {
    const StderrCapture captured;
    host.hang_up();
    store.evaluate("external.refresh()");
    ASSERT_TRUE(run_main_loop_until([&] { return store.process_has_gone(); }));
}

TEST_F(Host, EndsTheWebProcessWithoutAClientDirectory) {
    const StderrCapture captured;
    std::filesystem::remove_all(client_directory());
    StoreView store;
    store.load("");
    ASSERT_TRUE(run_main_loop_until([&] { return store.process_has_gone(); }));
    EXPECT_THAT(captured.text(), HasSubstr(".QUOClient not created, anomoly use case, exiting\n"));
}

TEST_F(ConnectedHost, LosesNoCallsWhileItDoesNotRead) {
    host.pause();
    store.evaluate(
        "setTimeout(() => { for (let i = 0; i < 20000; ++i) external.sendAction(i) }, 0)");
    ASSERT_TRUE(page_waits_for_host(announced(host)));
    host.resume();
    ASSERT_TRUE(host.wait_for(5, 20000));
    const auto frames = host.frames(5);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        ASSERT_EQ(frames[i].payload, std::to_string(i) + '\0');
    }
}

TEST_F(ConnectedHost, ReceivesALargeValue) {
    store.evaluate("external.setItem('big', 'x'.repeat(20e6), 'done')");
    ASSERT_TRUE(host.wait_for(19));
    EXPECT_EQ(host.frames(19)[0].payload.size(), 4 + 20'000'001 + 5);
}

TEST_F(ConnectedHost, ReceivesTheAnnouncementOfEveryWebProcess) {
    StoreView second;
    second.load("");
    ASSERT_TRUE(host.wait_for(61, 2));
    EXPECT_NE(host.frames(61)[0].payload, host.frames(61)[1].payload);
}

}  // namespace
}  // namespace kestrel::testing
