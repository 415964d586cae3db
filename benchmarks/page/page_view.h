#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <functional>
#include <string>

namespace kestrel::bench {

// A web view that shows the benchmarks' page. Ends the program when its web process ends.
class PageView {
  public:
    // Returns when the page has loaded.
    PageView();
    ~PageView();
    PageView(const PageView&) = delete;
    PageView& operator=(const PageView&) = delete;

    // The text of what the body of an asynchronous function returns, when it has.
    std::string run(const std::string& body) const;
    double number(const std::string& body) const { return std::stod(run(body)); }

    // Has the page evaluate `script` that often, and waits until all are done.
    void evaluate(const char* script, int times) const;

  private:
    WebKitWebView* view_;
    GtkWidget* window_;
};

}  // namespace kestrel::bench
