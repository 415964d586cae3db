#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <functional>
#include <string>

namespace kestrel {

// A window with the store page. Its callbacks are called in the default main context and may be
// called until it is destroyed.
class StoreWindow {
  public:
    struct Settings {
        std::string extension_directory;
        std::string install_root;
        std::string resources;
    };
    struct Events {
        std::function<void()> empty_page_shown;
        std::function<void()> page_shown;
        std::function<void()> reload_wanted;
        std::function<void()> closed;
        std::function<void(const std::string& what)> failed;  // the page, or its process
    };

    // GTK must be initialised.
    StoreWindow(const Settings& settings, Events events);
    ~StoreWindow();
    StoreWindow(const StoreWindow&) = delete;
    StoreWindow& operator=(const StoreWindow&) = delete;

    // Loads an empty page, which starts a web process.
    void show_empty_page();

    void load(const std::string& uri);

    // One line below the page.
    void show_status(const std::string& text);

    // Saves what the view shows as PNG, then tells whether that worked.
    void take_picture(const std::string& path, std::function<void(bool)> done);

    // Hides the window and ends its web process.
    void close();

  private:
    void on_load_changed(WebKitLoadEvent event);
    void connect_signals();

    Events events_;
    GtkWidget* window_;
    WebKitWebView* view_;
    GtkWidget* status_;
};

}  // namespace kestrel
