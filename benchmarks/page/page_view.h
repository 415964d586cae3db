#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <string>
#include <vector>

namespace kestrel::bench {

// A web view that shows the benchmarks' page. Ends the program when the web process exits.
class PageView {
  public:
    // Returns when the page has loaded; its bench.load() loads `library`.
    explicit PageView(const char* library);
    ~PageView();
    PageView(const PageView&) = delete;
    PageView& operator=(const PageView&) = delete;

    // Runs `body` as an asynchronous function and returns its result as text.
    std::string run(const std::string& body) const;
    double number(const std::string& body) const { return std::stod(run(body)); }

    // Evaluates the scripts in the page and waits until all have run.
    void evaluate(const std::vector<std::string>& scripts) const;

  private:
    WebKitWebView* view_;
    GtkWidget* window_;
};

}  // namespace kestrel::bench
