#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <list>
#include <span>
#include <string>

#include "workbench/window/bad_host_menu.h"
#include "workbench/window/locale_menu.h"
#include "workbench/window/send_panel.h"
#include "workbench/window/trace_window.h"
#include "workbench/window/wire_pane.h"

namespace kestrel {

// The main window: the page on the left, the messages on the right, the controls above.
class WorkbenchWindow {
  public:
    struct Events {
        std::function<void()> reload;
        std::function<void()> show_inspector;
        std::function<void()> closed;
        std::function<void(const std::string& address)> load;         // a file or URL, as typed
        std::function<void(const std::string& path)> load_resources;  // a file's path
        SendPanel::OnSend send;
        BadHostMenu::Events bad_host;
        LocaleMenu::OnChosen choose_locale;
    };

    // Shows the window with `view`, the page's widget. GTK must be initialised. `view` and `log`
    // must outlive the window.
    WorkbenchWindow(GtkWidget* view, MessageLog& log, const LocaleMenu::Choices& locales,
                    Events events);
    ~WorkbenchWindow();
    WorkbenchWindow(const WorkbenchWindow&) = delete;
    WorkbenchWindow& operator=(const WorkbenchWindow&) = delete;

    GtkWindow* window() const { return GTK_WINDOW(window_); }

    // Shows a line below the page. The text may contain any bytes.
    void show_status(const std::string& text);

    // Shows the address of the page that is being loaded.
    void show_address(const std::string& uri);

    // Sets the processes that messages can be sent to.
    void show_processes(std::span<const int> pids) { send_panel_.set_processes(pids); }

    void hide();

  private:
    GtkWidget* make_header();
    GtkWidget* make_body(GtkWidget* view);
    void choose_resources();
    void choose_trace();
    void open_trace(const std::string& path);

    Events events_;
    GtkWidget* window_;
    GtkWidget* status_;
    GtkWidget* address_;
    WirePane pane_;
    SendPanel send_panel_;
    BadHostMenu bad_host_;
    LocaleMenu locales_;
    std::list<TraceWindow> traces_;
};

}  // namespace kestrel
