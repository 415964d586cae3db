#pragma once

#include <gtk/gtk.h>

#include <set>

#include "workbench/desktop/user_interface.h"

namespace kestrel {

// Shows dialogs and menus over a window, without blocking the page.
class WindowUserInterface final : public UserInterface {
  public:
    struct Events {
        std::function<void(const std::string& line)> notice;
        std::function<void()> open_default_store;
        std::function<void()> reload;
        std::function<void()> show_inspector;
    };

    // `view` is the page's widget in `window`; both must outlive the desktop.
    WindowUserInterface(GtkWindow* window, GtkWidget* view, Events events);
    ~WindowUserInterface() override;
    WindowUserInterface(const WindowUserInterface&) = delete;
    WindowUserInterface& operator=(const WindowUserInterface&) = delete;

    void ask(const Question& question, std::function<void(bool agrees)> done) override;
    void report_error(const ErrorReport& report,
                      std::function<void(bool is_pressed)> done) override;
    void show_accounts(std::span<const Account> accounts) override;
    void show_settings_menu(const Area& area) override;
    void show_notice(const std::string& text) override;
    void open_default_store() override;

  private:
    struct OpenDialog;

    GtkWidget* make_dialog(GtkMessageType type, const std::string& text,
                           const std::string& details);
    void show(GtkWidget* dialog, std::function<void(bool)> done);
    void on_response(OpenDialog& dialog, int response);
    GtkWidget* settings_menu();

    GtkWindow* window_;
    GtkWidget* view_;
    Events events_;
    std::set<OpenDialog*> dialogs_;
    GtkWidget* menu_ = nullptr;  // owned by GTK, attached to the view
};

}  // namespace kestrel
