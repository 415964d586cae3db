// Hosts, web processes and log daemons that stop, end or restart.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/webkit/store_fixture.h"
#include "tests/webkit/web_process.h"

namespace kestrel::testing {
namespace {

using Recovery = ConnectedStoreTest;
using LogDaemon = StoreTest;

TEST_F(Recovery, RunsAnswersInAPageOfTheBackForwardCache) {
    store.load("<title>first</title>");
    store.evaluate("window.kept = true");
    store.load("<title>second</title>");
    store.go_back();
    ASSERT_EQ(store.evaluate("window.kept"), "true") << "the page did not come from the cache";
    host.send(1, {"(() => { document.title = 'answered ' + window.kept })"});
    ASSERT_TRUE(host.wait_for(33));
    EXPECT_EQ(store.evaluate("document.title"), "answered true");
}

TEST_F(Recovery, StartsAnotherWebProcessAfterOneWasKilled) {
    const pid_t first = announced(host);
    kill(first, SIGKILL);
    ASSERT_TRUE(run_main_loop_until([&] { return store.process_has_gone(); }));
    webkit_web_view_load_uri(store.view(), "about:blank");
    ASSERT_TRUE(host.wait_for(61, 2));
    EXPECT_NE(announced(host), first);
    // An answer to a page that is being replaced is not run.
    ASSERT_TRUE(run_main_loop_until([&] { return !webkit_web_view_is_loading(store.view()); }));
    host.send(1, {"String"});
    EXPECT_TRUE(host.wait_for(33));
}

TEST_F(Recovery, DeliversAnswersToAStoppedWebProcess) {
    const pid_t process = announced(host);
    kill(process, SIGSTOP);
    for (int i = 0; i < 200; ++i) host.send(1, {"String"});
    kill(process, SIGCONT);
    EXPECT_TRUE(host.wait_for(33, 200));
}

TEST_F(Recovery, DeliversAnswersDuringNavigations) {
    for (int page = 0; page < 10; ++page) {
        for (int i = 0; i < 50; ++i) host.send(1, {"(() => 1)"});
        store.load("<title>page</title>");
    }
    EXPECT_TRUE(host.wait_for(33, 500));
    EXPECT_FALSE(store.process_has_gone());
}

// The host ends after it has written some bytes of a message.
class HostEnds : public ConnectedStoreTest, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(HostEnds, KeepsThePage) {
    const std::string answer = frame_bytes(1, {}, {"(() => { document.title = 'reached' })"});
    host.send_bytes(answer.substr(0, GetParam()));
    host.hang_up();
    store.load("<title>next</title>");
    EXPECT_EQ(store.evaluate("document.title"), "next");
    EXPECT_FALSE(store.process_has_gone());
}

INSTANTIATE_TEST_SUITE_P(AfterBytes, HostEnds, ::testing::Values(0, 1, 15, 16, 17, 30, 54));

TEST_F(LogDaemon, MayRestart) {
    const std::string socket = client_directory() + "/.zynlogsocket";
    auto daemon = std::make_unique<ListeningHost>(socket);
    host.listen();
    StoreView store;
    store.load("<title>store</title>");
    ASSERT_TRUE(host.wait_for(61));
    daemon.reset();
    unlink(socket.c_str());
    for (int i = 0; i < 3; ++i) {
        host.send_bytes(header_bytes(9, 0, 0, 0));  // no handler: a line at ERROR
        host.send(1, {"String"});
    }
    ASSERT_TRUE(host.wait_for(33, 3));
    daemon = std::make_unique<ListeningHost>(socket);
    host.send_bytes(header_bytes(9, 0, 0, 0));
    host.send(1, {"String"});
    EXPECT_TRUE(host.wait_for(33, 4));
    EXPECT_FALSE(store.process_has_gone());
    unlink(socket.c_str());
}

}  // namespace
}  // namespace kestrel::testing
