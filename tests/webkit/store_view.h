#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <string>

namespace kestrel::testing {

// The directory that holds the built extension. A test may set another one before its first page.
extern std::string extension_directory;

// Writes a page with this content into the home directory and returns its address.
std::string page_uri(const std::string& html);

// A web view in a window, whose web process loads the extension.
class StoreView {
  public:
    // With this user data for the extension.
    explicit StoreView(const std::string& install_root = "", const std::string& resources = "{}");
    // With any user data, or none.
    explicit StoreView(GVariant* user_data);
    // A view that shares the web process of another one.
    struct RelatedTo {
        WebKitWebView* view;
    };
    explicit StoreView(RelatedTo opener);
    StoreView(const StoreView&) = delete;
    ~StoreView();
    StoreView& operator=(const StoreView&) = delete;

    // Each waits until the page has loaded or its web process has ended. Every load is a new page.
    void load(const std::string& html);
    void load_uri(const std::string& uri);
    void reload();
    void go_back();

    // The result of `script` in the page as text, "error: ..." if it throws.
    std::string evaluate(const std::string& script);

    // Waits until `script` returns true in the page.
    bool wait_for(const std::string& script);

    bool process_has_gone() const { return process_has_gone_; }
    WebKitWebView* view() const { return view_; }

  private:
    void show();
    void wait_for_load();

    WebKitWebView* view_ = nullptr;
    GtkWidget* window_ = nullptr;
    GVariant* user_data_ = nullptr;
    bool loaded_ = false;
    bool process_has_gone_ = false;
};

}  // namespace kestrel::testing
