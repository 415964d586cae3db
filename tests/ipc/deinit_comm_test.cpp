// Closing the link.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "ipc/webkit_client.h"
#include "log/zynlog.h"
#include "tests/ipc/log_lines.h"
#include "tests/support/log_recorder.h"
#include "tests/support/process_state.h"
#include "tests/support/stderr_capture.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

class DeinitCommTest : public ::testing::Test {
  protected:
    DeinitCommTest() { clear_log(); }

    StderrCapture errors;
};

TEST_F(DeinitCommTest, ClosesTheDescriptor) {
    const std::size_t before = open_descriptors();
    const int fd = open("/dev/null", O_RDWR | O_CLOEXEC);
    webkit_client::server_fd = fd;
    webkit_client::deinitComm();
    EXPECT_EQ(webkit_client::server_fd, -1);
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_THAT(logged(), ElementsAre(kStarted));
    EXPECT_EQ(errors.text(), "");
}

TEST_F(DeinitCommTest, WarnsIfAlreadyClosed) {
    webkit_client::deinitComm();
    EXPECT_EQ(webkit_client::server_fd, -1);
    EXPECT_THAT(logged(), ElementsAre(kStarted, LogLine{kLogWebkit, kWarning,
                                                        "server_fd is already closed\n"}));
    EXPECT_EQ(errors.text(), "");
}

TEST_F(DeinitCommTest, ResetsADescriptorThatFailsToClose) {
    webkit_client::server_fd = 999;
    webkit_client::deinitComm();
    EXPECT_EQ(webkit_client::server_fd, -1);
    EXPECT_EQ(errors.text(),
              "Could not close webkit_client::server_fd, error: Bad file descriptor\n");
    EXPECT_THAT(logged(), ElementsAre(kStarted, LogLine{kLogWebkit, kError,
                                                        "Could not close server_fd, error: "
                                                        "Bad file descriptor\n"}));
}

}  // namespace
}  // namespace kestrel::testing
