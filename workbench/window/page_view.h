#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <functional>
#include <string>

namespace kestrel {

// The web view of the store page. Callbacks run in the default main context until the view is
// closed or destroyed.
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

    // Saves a screenshot of the view as PNG and reports whether that succeeded.
    void take_picture(const std::string& path, std::function<void(bool)> done);

    // Terminates the web process. No callbacks run afterwards.
    void close();

  private:
    void on_load_changed(WebKitLoadEvent event);
    void connect_signals();

    Events events_;
    WebKitWebView* view_;  // owns a reference
};

}  // namespace kestrel
