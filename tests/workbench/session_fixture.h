#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/support/frame_bytes.h"
#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/answers/fake_services.h"
#include "tests/workbench/wire/fake_web_process.h"
#include "workbench/session.h"
#include "workbench/wire/message_server.h"

namespace kestrel::testing {

inline constexpr const char* kUri = "file:///store/page.html";

inline const std::string kHostReadyMessage =
    frame_bytes(0, {}, {"window.onHostReady && window.onHostReady();"});

// A host's session with one connected web process.
class SessionTest : public ::testing::Test {
  protected:
    explicit SessionTest(PageCheck* check = nullptr)
        : session(fakes.services, "{a: 1}", transcript, check,
                  {.load_page = [this] { ++loads; }, .check_over = [this] { is_over = true; }}) {
        fakes.services.page_uri = kUri;
    }

    // Waits until the host has handled everything that was sent to it.
    static void settle() { run_main_loop_until_idle(); }

    int loads = 0;
    bool is_over = false;
    std::ostringstream lines;
    Transcript transcript{lines};
    TemporaryDirectory directory;
    FakeServices fakes;
    Session session;
    MessageServer server{directory.path() + "/socket", session};
    FakeWebProcess web_process{directory.path() + "/socket"};
};

}  // namespace kestrel::testing
