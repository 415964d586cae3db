#pragma once

#include <glib.h>

#include <memory>
#include <optional>
#include <string>

#include "workbench/answers/services.h"
#include "workbench/check/page_check.h"
#include "workbench/desktop/user_interface.h"
#include "workbench/options.h"
#include "workbench/private_home.h"
#include "workbench/session.h"
#include "workbench/window/page_view.h"
#include "workbench/window/workbench_window.h"
#include "workbench/wire/event_source.h"
#include "workbench/wire/message_log.h"
#include "workbench/wire/message_server.h"
#include "workbench/wire/transcript.h"

namespace kestrel {

// The program: one view, one server, and either a window or a check.
class Workbench {
  public:
    // The environment and GTK must have been set up for `home`. Throws what StoreDatabase and
    // MessageServer throw.
    Workbench(const Options& options, const PrivateHome& home, Transcript& transcript);
    ~Workbench();
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    // Runs until the window is closed or the check has finished. Returns the exit status.
    int run();

    // The locale to restart with, "" for the user's own; none to exit.
    const std::optional<std::string>& wanted_locale() const { return wanted_locale_; }

  private:
    struct WidgetDestroy {
        void operator()(GtkWidget* widget) const { gtk_widget_destroy(widget); }
    };

    bool has_sandbox(const std::string& home) const;
    PageView::Events view_events();
    std::unique_ptr<UserInterface> make_user_interface();
    std::unique_ptr<PageCheck> make_check() const;
    void show_notice(const std::string& text);
    void open_default_store();
    WorkbenchWindow::Events window_events();
    void load(const std::string& address);
    void load_resources(const std::string& path);
    void reload();
    void on_page_failure(const std::string& what);
    void finish_check();
    void leave(int status);
    void wait_for_web_processes();

    // Services are destroyed after the session that uses them, and call nothing back then.
    const Options& options_;
    Transcript& transcript_;
    const std::string install_root_;
    std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop_;
    StoreDatabase database_;
    InstalledApps apps_;
    WebRequests requests_;
    PageView view_;
    MessageLog log_;
    std::unique_ptr<WorkbenchWindow> window_;               // null when headless
    std::unique_ptr<GtkWidget, WidgetDestroy> off_screen_;  // null otherwise
    std::unique_ptr<UserInterface> user_interface_;
    Services services_;
    std::unique_ptr<PageCheck> check_;  // null with a window
    Session session_;
    MessageServer server_;
    bool is_leaving_ = false;
    int status_ = 0;
    std::optional<std::string> wanted_locale_;
};

}  // namespace kestrel
