#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ipc/webkit_client.h"
#include "tests/ipc/recorded_handlers.h"
#include "tests/support/log_recorder.h"
#include "tests/support/process_state.h"
#include "tests/support/stderr_capture.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/wait_until.h"

namespace kestrel::testing {

// A process whose link has not been started. Afterwards every thread and descriptor that the link
// made must be gone; a test whose link stands has its host hang up before.
class LinkTest : public ::testing::Test {
  protected:
    LinkTest() : threads_before(thread_count()) { clear_log(); }

    void start_link(const std::string& socket_path) {
        webkit_client::initComm(handlers.table(), strdup(socket_path.c_str()));
    }
    void start_link() { start_link(path); }

    bool reader_has_ended() const {
        return wait_until([this] { return thread_count() == threads_before; });
    }

    void TearDown() override {
        EXPECT_TRUE(reader_has_ended());
        if (webkit_client::server_fd != -1) webkit_client::deinitComm();
        EXPECT_EQ(open_descriptors(), descriptors_before);
    }

    std::size_t threads_before;
    TemporaryDirectory directory;
    std::string path = directory.path() + "/webkit_socket2";
    RecordedHandlers handlers{};
    StderrCapture errors;
    std::size_t descriptors_before = open_descriptors();
};

}  // namespace kestrel::testing
