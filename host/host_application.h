#pragma once

#include <glib.h>

#include <memory>
#include <string>

#include "host/event_source.h"
#include "host/message_server.h"
#include "host/options.h"
#include "host/private_home.h"
#include "host/rehearsal.h"
#include "host/session.h"
#include "host/store_window.h"
#include "host/transcript.h"

namespace kestrel {

// The program: one window, one server, from start to exit status.
class HostApplication {
  public:
    // The environment's HOME and GTK must have been set up for `home`.
    HostApplication(const Options& options, const PrivateHome& home, Transcript& transcript);
    ~HostApplication();
    HostApplication(const HostApplication&) = delete;
    HostApplication& operator=(const HostApplication&) = delete;

    // Runs until the window is closed or, with --auto, all is done. The exit status.
    int run();

  private:
    StoreWindow::Events window_events();
    Session::Events session_events();
    void reload();
    void give_up(const std::string& what);
    void finish_rehearsal();
    void leave(int status);
    void wait_for_web_processes();

    const Options& options_;
    Transcript& transcript_;
    std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop_;
    Rehearsal rehearsal_;
    Session session_;
    MessageServer server_;
    StoreWindow window_;
    bool is_leaving_ = false;
    int status_ = 0;
};

}  // namespace kestrel
