#pragma once

#include <JavaScriptCore/JavaScript.h>
#include <webkit2/webkit-web-extension.h>

namespace kestrel::testing {

// A page with one frame, outside a web process. WebKit's questions to frames are answered from what
// is told here.
class FakePage {
  public:
    enum class FrameKind { main, other };

    FakePage(FrameKind kind, JSGlobalContextRef shown);
    ~FakePage();
    FakePage(const FakePage&) = delete;
    FakePage& operator=(const FakePage&) = delete;

    WebKitWebPage* page() const { return page_; }
    WebKitFrame* frame() const { return frame_; }

    // Makes the frame show another context, or none.
    void show(JSGlobalContextRef context) const;

    // Ends the page; its frame stays.
    void close();

    // Whether others than this hold the frame.
    bool is_frame_held() const;

  private:
    WebKitWebPage* page_;
    WebKitFrame* frame_;
};

}  // namespace kestrel::testing
