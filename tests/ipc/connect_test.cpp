// The way from initComm to a link that stands.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>
#include <future>
#include <thread>

#include "ipc/link.h"
#include "ipc/send.h"
#include "log/zynlog.h"
#include "tests/ipc/link_fixture.h"
#include "tests/ipc/log_lines.h"
#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

std::string announcement() { return frame_bytes(61, {std::to_string(getpid())}, {}); }

class ConnectTest : public LinkTest {
  protected:
    // A path of exactly this many bytes.
    std::string path_of_length(std::size_t length) const {
        return path + std::string(length - path.size(), 'x');
    }
};

TEST_F(ConnectTest, AnnouncesTheProcessFirstAndOnce) {
    const ListeningHost host(path);
    start_link();
    const HostEnd connection = host.accept();
    EXPECT_EQ(connection.read_frame(), announcement());
    ASSERT_TRUE(wait_until([] { return webkit_client::mu.try_lock(); }));
    webkit_client::mu.unlock();
    EXPECT_TRUE(connection.is_quiet());
    EXPECT_THAT(logged(), ElementsAre(kStarted));
    EXPECT_EQ(errors.text(), "");
}

// A blocking connect would keep the lock, and a page call would wait for as long.
TEST_F(ConnectTest, WaitsForRoomInTheHostsQueueWithoutTheLock) {
    const ListeningHost host(path, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int first = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(connect(first, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);

    start_link();
    ASSERT_TRUE(wait_until([] { return load_server_fd() != -1; }));
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(wait_until([] { return send_lock.try_lock(); }));
        send_lock.unlock();
    }
    EXPECT_NE(host.accept().fd(), -1);
    const HostEnd connection = host.accept();
    EXPECT_EQ(connection.read_frame(), announcement());
    EXPECT_EQ(fcntl(load_server_fd(), F_GETFL) & O_NONBLOCK, 0);
    close(first);
}

TEST_F(ConnectTest, StoresTheHandlersAndDispatchesThroughThem) {
    const ListeningHost host(path);
    webkit_client::func_array = nullptr;
    start_link();
    EXPECT_EQ(webkit_client::func_array, handlers.table());
    const HostEnd connection = host.accept();
    connection.write(frame_bytes(1, {}, {"ab"}));
    EXPECT_TRUE(handlers.wait_for(1));
}

TEST_F(ConnectTest, SendsFromAnyThreadOnceConnected) {
    const ListeningHost host(path);
    start_link();
    const HostEnd connection = host.accept();
    connection.read_frame();
    send(6, {}, {});
    std::thread([] { send(33, {}, {}); }).join();
    EXPECT_EQ(connection.read_frame(), header_bytes(6, 0, 0, 0));
    EXPECT_EQ(connection.read_frame(), header_bytes(33, 0, 0, 0));
}

// Sends as soon as the connection stands, so that the announcement would be overtaken if it could.
TEST_F(ConnectTest, SendsNothingBeforeTheAnnouncement) {
    const ListeningHost host(path);
    for (int round = 0; round < 50; ++round) {
        std::promise<void> watching;
        std::thread sender([&] {
            watching.set_value();
            wait_until([] {
                const int fd = load_server_fd();
                sockaddr address{};
                socklen_t size = sizeof address;
                return fd != -1 && getpeername(fd, &address, &size) == 0;
            });
            send(6, {}, {});
        });
        watching.get_future().get();
        start_link();
        {
            const HostEnd connection = host.accept();
            EXPECT_EQ(connection.read_frame(), announcement());
            EXPECT_EQ(connection.read_frame(), header_bytes(6, 0, 0, 0));
            sender.join();
        }
        ASSERT_TRUE(reader_has_ended());
        webkit_client::deinitComm();
    }
}

TEST_F(ConnectTest, NotifiesAWaiterOnceTheAnnouncementIsSent) {
    const ListeningHost host(path);
    std::unique_lock lock(webkit_client::mu);
    start_link();
    // The lock is this thread's until it waits: the reader has not even made its socket.
    EXPECT_EQ(load_server_fd(), -1);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const auto status = webkit_client::signal.wait_until(lock, deadline);
    EXPECT_EQ(status, std::cv_status::no_timeout);
    const HostEnd connection = host.accept();
    EXPECT_FALSE(connection.is_quiet());
    lock.unlock();
    connection.read_frame();
}

TEST_F(ConnectTest, ClosesItsSocketOnExec) {
    const ListeningHost host(path);
    start_link();
    const HostEnd connection = host.accept();
    connection.read_frame();
    EXPECT_EQ(fcntl(load_server_fd(), F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(open_descriptors(), descriptors_before + 3);  // listening, and both ends
}

// The kernel doubles what it grants, for its own records.
TEST_F(ConnectTest, GetsTheRequestedSendBufferUpToTheSystemLimit) {
    const ListeningHost host(path);
    start_link();
    const HostEnd connection = host.accept();
    EXPECT_EQ(connection.read_frame(), announcement());
    int allowed = 0;
    std::ifstream("/proc/sys/net/core/wmem_max") >> allowed;
    int size = 0;
    socklen_t length = sizeof size;
    ASSERT_EQ(getsockopt(load_server_fd(), SOL_SOCKET, SO_SNDBUF, &size, &length), 0);
    EXPECT_EQ(size, 2 * std::min(4 * 1024 * 1024, allowed));
}

TEST_F(ConnectTest, ReadsOnADetachedThread) {
    const ListeningHost host(path);
    static std::promise<int> detach_state;
    detach_state = {};
    handlers.table()[5] = [](int*, std::string*) {
        pthread_attr_t attributes;
        pthread_getattr_np(pthread_self(), &attributes);
        int state = -1;
        pthread_attr_getdetachstate(&attributes, &state);
        pthread_attr_destroy(&attributes);
        detach_state.set_value(state);
    };
    start_link();
    const HostEnd connection = host.accept();
    connection.write(header_bytes(5, 0, 0, 0));
    EXPECT_EQ(detach_state.get_future().get(), PTHREAD_CREATE_DETACHED);
}

TEST_F(ConnectTest, AHostThatHasGoneEndsTheReaderAndLeavesTheDescriptor) {
    const ListeningHost host(path);
    start_link();
    host.accept().read_frame();
    EXPECT_TRUE(wait_for_log("Host closed the connection, exiting thread\n"));
    EXPECT_TRUE(reader_has_ended());
    EXPECT_NE(webkit_client::server_fd, -1);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(ConnectTest, AcceptsTheLongestPath) {
    const std::string longest = path_of_length(107);
    const ListeningHost host(longest);
    start_link(longest);
    EXPECT_EQ(host.accept().read_frame(), announcement());
}

TEST_F(ConnectTest, DoesNotStartWithAPathThatIsTooLong) {
    const ListeningHost host(path_of_length(107));  // where a truncated path would lead
    const std::string too_long = path_of_length(108);
    start_link(too_long);
    EXPECT_EQ(thread_count(), threads_before);
    EXPECT_EQ(webkit_client::server_fd, -1);
    EXPECT_EQ(errors.text(),
              "webkit_client::initComm socket path over 107 bytes, not connecting\n");
    EXPECT_THAT(logged(), ElementsAre(kStarted, LogLine{kLogWebkit, kError,
                                                        "Socket path over 107 bytes, not "
                                                        "connecting: " +
                                                            too_long + "\n"}));
}

TEST_F(ConnectTest, DoesNotStartWithoutAPath) {
    webkit_client::initComm(handlers.table(), nullptr);
    EXPECT_EQ(thread_count(), threads_before);
    EXPECT_EQ(errors.text(), "webkit_client::initComm no socket path, not connecting\n");
}

// For its lifetime the process can open no further descriptor.
class DescriptorLimit {
  public:
    DescriptorLimit() {
        getrlimit(RLIMIT_NOFILE, &previous_);
        const rlimit none{0, previous_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &previous_); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

  private:
    rlimit previous_{};
};

TEST_F(ConnectTest, GivesUpWithoutASocket) {
    char* const owned_path = strdup(path.c_str());
    {
        const DescriptorLimit limit;
        webkit_client::initComm(nullptr, owned_path);
        ASSERT_TRUE(wait_for_log("Could not create socket"));
    }
    EXPECT_TRUE(reader_has_ended());
    EXPECT_EQ(webkit_client::server_fd, -1);
    EXPECT_TRUE(webkit_client::mu.try_lock());
    webkit_client::mu.unlock();
    EXPECT_EQ(errors.text(), "Could not create socket!\n");
    EXPECT_THAT(logged(),
                ElementsAre(kStarted, LogLine{kLogWebkit, kError, "Could not create socket"}));
}

}  // namespace
}  // namespace kestrel::testing
