// The link's whole life, from connecting to the host's end, with each system call failing once.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <thread>

#include "ipc/link.h"
#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/faults/faults.h"
#include "tests/faults/scenario.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/support/process_state.h"

namespace kestrel::testing {
namespace {

std::atomic<int> dispatched = 0;

// Announcement, two messages out, two in. 0 when all of them have arrived, 1 when not.
int life_of_a_link() {
    const std::string path = std::string(std::getenv("HOME")) + "/socket";
    std::optional<ListeningHost> host;
    {
        const NoFaults listening;
        host.emplace(path);
    }
    static std::array<webkit_client::InboundHandler, kInboundHandlerSlots> handlers{};
    handlers[1] = [](int*, std::string*) { ++dispatched; };
    webkit_client::initComm(handlers.data(), strdup(path.c_str()));
    const bool is_connected = comes_true([&] {
        return running_threads() == 0 || (load_server_fd() != -1 && [] {
                   const bool free = webkit_client::mu.try_lock();
                   if (free) webkit_client::mu.unlock();
                   return free;
               }());
    });
    bool all_arrived = is_connected;
    send(6, {}, {});
    const std::string text(100'000, 'x');  // fits the socket's buffer
    std::thread([&] { send(5, {}, std::array<std::string_view, 1>{text}); }).join();
    if (load_server_fd() == -1) return 1;
    {
        const NoFaults on_the_other_side;
        shutdown(load_server_fd(), SHUT_WR);  // what has not come by now never will
        HostEnd connection = host->accept();
        all_arrived = connection.read_frame() == frame_bytes(61, {std::to_string(getpid())}, {}) &&
                      connection.read_frame() == frame_bytes(6, {}, {}) &&
                      connection.read_frame() == frame_bytes(5, {}, {text}) && all_arrived;
        connection.write(frame_bytes(1, {}, {"a"}) + frame_bytes(1, {}, {text}));
        connection.hang_up();
    }
    comes_true([] { return running_threads() == 0; });
    webkit_client::deinitComm();
    return all_arrived && dispatched == 2 ? 0 : 1;
}

constexpr std::string_view kDocumented[] = {
    "Could not create socket!\n",
    "webkit_client::sendMessage server_fd not initialized yet\n",
    "webkit_util::wrapMessage could not malloc, message not sent\n",
    "webkit_client::recvMessage could not malloc, failing\n",
    "Error writing into the socket\n",
};

// Whether the text is made of documented lines.
bool is_documented(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return false;
        const std::string_view line = text.substr(0, end + 1);
        const bool is_known =
            std::ranges::find(kDocumented, line) != std::end(kDocumented) ||
            line.starts_with("webkit_client::recvMessage Error in reading first four ints") ||
            line.starts_with("webkit_client::recvMessage Error in                      ");
        if (!is_known) return false;
        text.remove_prefix(line.size());
    }
    return true;
}

TEST(LinkFaults, NoneHappens) {
    const Outcome outcome = run_with({"", 0, 0}, life_of_a_link);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_FALSE(outcome.leaks);
}

TEST(LinkFaults, OfAnInterruptionChangeNothing) {
    for_each_fault({{"connect", {EINTR, EAGAIN}}, {"read", {EINTR}}, {"send", {EINTR}}},
                   life_of_a_link, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(LinkFaults, OfConnectingAreTriedAgain) {
    for_each_fault(
        {{"connect", {ECONNREFUSED, ENOENT, EACCES, EPERM, ETIMEDOUT, EPROTOTYPE, ENOTDIR}}},
        life_of_a_link, [](const Fault& fault, const Outcome& outcome) {
            EXPECT_EQ(outcome.status, 0) << fault;
            EXPECT_EQ(outcome.errors, "") << fault;
        });
}

TEST(LinkFaults, EndTheLinkOrTheProcessAsDocumented) {
    for_each_fault(
        {{"socket", {EMFILE, ENFILE, ENOBUFS, ENOMEM, EACCES, EAFNOSUPPORT}},
         {"pthread_create", {EAGAIN, EPERM}},
         {"read", {EIO, EBADF, ECONNRESET, ENOTCONN, ENOMEM, EAGAIN, EFAULT}},
         {"send", {EPIPE, ECONNRESET, ENOTCONN, EAGAIN, ENOBUFS, ENOMEM, EBADF}},
         {"malloc", {ENOMEM}}},
        life_of_a_link, [](const Fault& fault, const Outcome& outcome) {
            // The last read finds the host's end, when all has arrived.
            const bool may_be_late = fault.function == "read";
            const int expected = fault.function == "send" ? 255 : 1;
            EXPECT_TRUE(outcome.status == expected || (may_be_late && outcome.status == 0))
                << fault << ": " << outcome.status;
            EXPECT_TRUE(is_documented(outcome.errors)) << fault << outcome.errors;
        });
}

}  // namespace
}  // namespace kestrel::testing
