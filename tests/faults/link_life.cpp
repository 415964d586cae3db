#include "tests/faults/link_life.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <thread>

#include "ipc/link.h"
#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/faults/faults.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

constexpr std::string_view kDocumented[] = {
    "Could not create socket!\n",
    "webkit_client::sendMessage server_fd not initialized yet\n",
    "webkit_util::wrapMessage could not malloc, message not sent\n",
    "webkit_client::recvMessage could not malloc, failing\n",
    "Error writing into the socket\n",
};

std::atomic<int> dispatched = 0;

bool reader_has_ended() { return running_threads() == 0; }

bool has_announced() {
    if (load_server_fd() == -1 || !webkit_client::mu.try_lock()) return false;
    webkit_client::mu.unlock();
    return true;
}

}  // namespace

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
    const bool is_connected = wait_until([] { return reader_has_ended() || has_announced(); });
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
    wait_until(reader_has_ended);
    webkit_client::deinitComm();
    const NoFaults leaving;
    host.reset();
    return all_arrived && dispatched == 2 ? 0 : 1;
}

bool is_documented(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) return false;
        const std::string_view line = text.substr(0, end + 1);
        const bool is_known =
            std::ranges::find(kDocumented, line) != std::end(kDocumented) ||
            line.starts_with("webkit_client::recvMessage Error in reading first four ints") ||
            line.starts_with("webkit_client::recvMessage Error in                      ") ||
            line.starts_with("Could not close webkit_client::server_fd, error: ") ||
            line.starts_with("Could not write the trace file ");
        if (!is_known) return false;
        text.remove_prefix(line.size());
    }
    return true;
}

}  // namespace kestrel::testing
