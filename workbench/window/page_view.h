#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <functional>
#include <string>

namespace kestrel {

// The view with the store page, a widget without a window. Its callbacks are called in the default
// main context and may be called until it is destroyed.
class PageView {
  public:
    struct Settings {
        std::string extension_directory;
        std::string install_root;
        std::string home;  // of the web processes
        std::string resources;
        bool has_sandbox = true;
    };
    struct Events {
        std::function<void()> empty_page_shown;
        std::function<void()> page_shown;
        std::function<void(const std::string& what)> failed;  // the page, or its process
    };

    // GTK must be initialised.
    PageView(const Settings& settings, Events events);
    ~PageView();
    PageView(const PageView&) = delete;
    PageView& operator=(const PageView&) = delete;

    GtkWidget* widget() const { return GTK_WIDGET(view_); }

    // Loads an empty page, which starts a web process.
    void show_empty_page();

    void load(const std::string& uri);
    bool shows(const std::string& uri) const;

    void show_inspector();

    // Saves what the view shows as PNG, then tells whether that worked.
    void take_picture(const std::string& path, std::function<void(bool)> done);

    // Ends the web process. No callback is called any more.
    void close();

  private:
    void on_load_changed(WebKitLoadEvent event);
    void connect_signals();

    Events events_;
    WebKitWebView* view_;  // a reference of our own
};

}  // namespace kestrel
