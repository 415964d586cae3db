#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <string>
#include <vector>

namespace kestrel::bench {

// A web view that shows the benchmarks' page. Ends the program when its web process ends.
class PageView {
  public:
    // Returns when the page has loaded; its bench.load() loads `library`.
    explicit PageView(const char* library);
    ~PageView();
    PageView(const PageView&) = delete;
    PageView& operator=(const PageView&) = delete;

    // The text of what the body of an asynchronous function returns, when it has.
    std::string run(const std::string& body) const;
    double number(const std::string& body) const { return std::stod(run(body)); }

    // Evaluates the scripts in the page and waits until all have run.
    void evaluate(const std::vector<std::string>& scripts) const;

  private:
    WebKitWebView* view_;
    GtkWidget* window_;
};

}  // namespace kestrel::bench
