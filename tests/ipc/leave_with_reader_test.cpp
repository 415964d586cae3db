// A process that leaves through exit while its reader is at work.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::ExitedWithCode;
using ::testing::StrEq;

// What the child processes' reader touches must outlive static destruction.
constinit std::atomic<int> dispatched = 0;
constinit std::atomic<bool> leaving = false;
constinit std::array<webkit_client::InboundHandler, kInboundHandlerSlots> table{};

void count_and_answer(int*, std::string* strings) {
    send(33, {}, std::array<std::string_view, 1>{strings[0]});
    ++dispatched;
    dispatched.notify_all();
}

void await_messages(int count) {
    const int enough = dispatched + count;
    for (int seen = dispatched; seen < enough; seen = dispatched) dispatched.wait(seen);
}

// Registered before every destructor, so that it runs after the last of them.
[[gnu::constructor(101)]] void register_last_word() {
    std::atexit([] {
        if (leaving) await_messages(100);
    });
}

// Starts the link and returns the host's end of it.
HostEnd connect_link() {
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/webkit_socket2";
    const ListeningHost host(path);
    table[1] = count_and_answer;
    webkit_client::initComm(table.data(), strdup(path.c_str()));
    return host.accept();
}

// Exits in the middle of a flood of messages, each of which is answered, and has the reader serve
// more of them when all static objects are gone.
[[noreturn]] void leave_amid_messages() {
    const HostEnd host = connect_link();
    host.read_frame();
    std::thread([&host] {
        const std::string flood = frame_bytes(1, {}, {std::string(200, 'x')});
        for (;;) host.write(flood);
    }).detach();
    std::thread([&host] {
        for (;;) host.read_frame();
    }).detach();
    await_messages(100);
    leaving = true;
    std::exit(0);
}

TEST(LeaveWithReaderDeathTest, ExitsCleanlyEveryTime) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (int round = 0; round < 20; ++round) {
        EXPECT_EXIT(leave_amid_messages(), ExitedWithCode(0), StrEq(""));
    }
}

}  // namespace
}  // namespace kestrel::testing
