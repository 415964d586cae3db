#include "tests/extension/fake_page.h"

namespace {

constexpr const char* kIsMain = "is-main";
constexpr const char* kContext = "context";

}  // namespace

// In place of WebKit's.
gboolean webkit_frame_is_main_frame(WebKitFrame* frame) {
    return g_object_get_data(G_OBJECT(frame), kIsMain) != nullptr;
}

JSGlobalContextRef webkit_frame_get_javascript_global_context(WebKitFrame* frame) {
    return static_cast<JSGlobalContextRef>(g_object_get_data(G_OBJECT(frame), kContext));
}

// The frame has no other contexts.
WebKitScriptWorld* webkit_script_world_new() { return nullptr; }

JSGlobalContextRef webkit_frame_get_javascript_context_for_script_world(
    WebKitFrame* /*frame*/, WebKitScriptWorld* /*world*/) {
    return nullptr;
}

namespace kestrel::testing {

FakePage::FakePage(FrameKind kind, JSGlobalContextRef shown)
    : page_(static_cast<WebKitWebPage*>(g_object_new(G_TYPE_OBJECT, nullptr))),
      frame_(static_cast<WebKitFrame*>(g_object_new(G_TYPE_OBJECT, nullptr))) {
    g_object_set_data(G_OBJECT(frame_), kIsMain, GINT_TO_POINTER(kind == FrameKind::main));
    show(shown);
}

FakePage::~FakePage() {
    close();
    g_object_unref(frame_);
}

void FakePage::show(JSGlobalContextRef context) const {
    g_object_set_data(G_OBJECT(frame_), kContext, context);
}

void FakePage::close() { g_clear_object(&page_); }

bool FakePage::is_frame_held() const { return G_OBJECT(frame_)->ref_count > 1; }

}  // namespace kestrel::testing
