#include "program/listening_socket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "log/local_socket.h"
#include "tests/support/listening_host.h"
#include "tests/support/process_state.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;
using logging::connect_to;
using ::testing::EndsWith;
using ::testing::Throws;
using ::testing::ThrowsMessage;

class ListeningSocketTest : public ::testing::Test {
  protected:
    void listen() { socket.emplace(path, "somebody is there"); }

    // Whether a new connection is accepted.
    bool is_reached() const {
        const FileDescriptor client = connect_to(path.c_str());
        return client.is_open() && socket->accept().is_open();
    }

    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/socket";
    std::optional<ListeningSocket> socket;
};

TEST_F(ListeningSocketTest, AcceptsPendingConnections) {
    listen();
    const FileDescriptor first = connect_to(path.c_str());
    const FileDescriptor second = connect_to(path.c_str());
    EXPECT_TRUE(socket->accept().is_open());
    EXPECT_TRUE(socket->accept().is_open());
    EXPECT_FALSE(socket->accept().is_open());
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(ListeningSocketTest, RemovesItsFile) {
    const std::size_t before = open_descriptors();
    listen();
    EXPECT_TRUE(is_reached());
    socket.reset();
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(ListeningSocketTest, IsPrivateToItsUser) {
    const mode_t previous = umask(0);
    listen();
    umask(previous);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
}

TEST_F(ListeningSocketTest, ReplacesAStaleSocket) {
    { const ListeningHost gone(path); }
    ASSERT_TRUE(fs::is_socket(path));
    listen();
    EXPECT_TRUE(is_reached());
}

TEST_F(ListeningSocketTest, RejectsAnAddressInUse) {
    const ListeningHost living(path);
    EXPECT_THAT([this] { listen(); }, ThrowsMessage<AddressInUse>("somebody is there"));
    EXPECT_TRUE(fs::is_socket(path));
}

TEST_F(ListeningSocketTest, RejectsAnAddressInUseWhoseQueueIsFull) {
    const ListeningHost living(path, 0);
    const FileDescriptor waiting = connect_to(path.c_str());
    EXPECT_THAT([this] { listen(); }, Throws<AddressInUse>());
    EXPECT_TRUE(fs::is_socket(path));
}

TEST_F(ListeningSocketTest, KeepsOtherFiles) {
    std::ofstream(path) << "text";
    EXPECT_THAT([this] { listen(); },
                ThrowsMessage<std::runtime_error>(EndsWith("is not a socket")));
    EXPECT_EQ(fs::file_size(path), 4U);
}

TEST_F(ListeningSocketTest, KeepsLinksAndTheirTargets) {
    const std::string beside = directory.path() + "/beside";
    { const ListeningHost gone(beside); }
    fs::create_symlink(beside, path);
    EXPECT_THAT([this] { listen(); },
                ThrowsMessage<std::runtime_error>(EndsWith("is not a socket")));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_TRUE(fs::is_socket(beside));
}

TEST_F(ListeningSocketTest, KeepsASocketThatReplacedIts) {
    listen();
    fs::remove(path);
    const ListeningHost another(path);
    socket.reset();
    EXPECT_TRUE(fs::exists(path));
}

TEST_F(ListeningSocketTest, AcceptsPathsUpToTheAddressSize) {
    const std::string longest = path + std::string(107 - path.size(), 'p');
    EXPECT_NO_THROW(ListeningSocket(longest, ""));
    EXPECT_THAT([&] { ListeningSocket(longest + "p", ""); },
                ThrowsMessage<std::runtime_error>(EndsWith("pp is too long for a socket")));
}

}  // namespace
}  // namespace kestrel::testing
