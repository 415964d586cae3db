// What may lie in the place of the host's socket: the link asks again, as it does while there is
// nothing, and leaves it as it is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "ipc/webkit_client.h"
#include "tests/ipc/fake_sleep.h"
#include "tests/ipc/link_fixture.h"
#include "tests/ipc/log_lines.h"
#include "tests/support/file_state.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::SizeIs;

// A socket of another kind, whose name stays when it is closed.
void bind_datagram_socket(const fs::path& path) {
    const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(fd);
}

void write_to(const fs::path& path) { std::ofstream(path) << "precious"; }

struct Obstacle {
    const char* name;
    // Puts it at `path`; what it points to, if anything, is `beside`, which is not there yet.
    std::function<void(const fs::path& path, const fs::path& beside)> put;

    friend std::ostream& operator<<(std::ostream& stream, const Obstacle& obstacle) {
        return stream << obstacle.name;
    }
};

const Obstacle kObstacles[] = {
    {"File", [](const auto& path, const auto&) { write_to(path); }},
    {"LinkToAFile",
     [](const auto& path, const auto& beside) {
         write_to(beside);
         fs::create_symlink(beside, path);
     }},
    {"DanglingLink",
     [](const auto& path, const auto& beside) { fs::create_symlink(beside, path); }},
    {"LinkToItself", [](const auto& path, const auto&) { fs::create_symlink(path, path); }},
    {"Fifo", [](const auto& path, const auto&) { mkfifo(path.c_str(), 0600); }},
    {"LinkToAFifo",
     [](const auto& path, const auto& beside) {
         mkfifo(beside.c_str(), 0600);
         fs::create_symlink(beside, path);
     }},
    {"Directory", [](const auto& path, const auto&) { fs::create_directory(path); }},
    {"SocketOfAnotherKind", [](const auto& path, const auto&) { bind_datagram_socket(path); }},
    {"SocketThatNobodyHasOpen",
     [](const auto& path, const auto&) { ListeningHost(path.native()); }},
};

class SocketObstacle : public LinkTest, public ::testing::WithParamInterface<Obstacle> {
  protected:
    std::string beside = directory.path() + "/beside";
};

TEST_P(SocketObstacle, IsNotTouched) {
    GetParam().put(path, beside);
    const std::string before = state_of(path) + state_of(beside);
    const FakeSleep sleeps;
    start_link();
    ASSERT_TRUE(wait_for_log(kGaveUp.text));
    ASSERT_TRUE(reader_has_ended());
    EXPECT_THAT(sleeps.calls(), SizeIs(10));
    EXPECT_EQ(errors.text(), "Connection error!\n");
    EXPECT_EQ(state_of(path) + state_of(beside), before);
}

TEST_P(SocketObstacle, MayBeReplacedByAHost) {
    GetParam().put(path, beside);
    std::optional<ListeningHost> host;
    const FakeSleep sleeps([&](int call) {
        if (call != 3) return;
        fs::remove(path);
        host.emplace(path);
    });
    start_link();
    ASSERT_TRUE(wait_until([&] { return sleeps.calls().size() == 3; }));
    ASSERT_TRUE(wait_until([] {
        const bool is_free = webkit_client::mu.try_lock();
        if (is_free) webkit_client::mu.unlock();
        return is_free;
    }));
    EXPECT_EQ(host->accept().read_frame(), frame_bytes(61, {std::to_string(getpid())}, {}));
    EXPECT_EQ(errors.text(), "");
}

INSTANTIATE_TEST_SUITE_P(Every, SocketObstacle, ::testing::ValuesIn(kObstacles),
                         [](const auto& test) { return test.param.name; });

using LinkToTheSocket = LinkTest;

TEST_F(LinkToTheSocket, IsFollowed) {
    const std::string real = directory.path() + "/real";
    const ListeningHost host(real);
    fs::create_symlink(real, path);
    start_link();
    EXPECT_EQ(host.accept().read_frame(), frame_bytes(61, {std::to_string(getpid())}, {}));
    EXPECT_EQ(errors.text(), "");
}

}  // namespace
}  // namespace kestrel::testing
