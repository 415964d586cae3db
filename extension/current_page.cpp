#include "extension/current_page.h"

#include <algorithm>
#include <atomic>
#include <list>
#include <memory>

#include "base/never_destroyed.h"
#include "extension/microtasks.h"
#include "extension/page_globals.h"

namespace kestrel {
namespace {

struct ObjectDeleter {
    void operator()(void* object) const { g_object_unref(object); }
};

template <typename T>
std::unique_ptr<T, ObjectDeleter> retained(T* object) {
    return std::unique_ptr<T, ObjectDeleter>(static_cast<T*>(g_object_ref(object)));
}

struct AttachedPage {
    WebKitWebPage* page;
    std::unique_ptr<WebKitFrame, ObjectDeleter> frame;
    std::unique_ptr<WebKitScriptWorld, ObjectDeleter> world;
};

// The pages that live, the current one last. A failed send on the reader thread runs static
// destructors while the main thread works on.
std::list<AttachedPage>& attached_pages() {
    static NeverDestroyed<std::list<AttachedPage>> pages;
    return pages.object;
}

constinit std::atomic<PageId> current_id = 0;

// Deprecated for a function that returns a JSC object, which we do not need.
JSGlobalContextRef context_of(WebKitFrame* frame) {
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    return webkit_frame_get_javascript_global_context(frame);
    G_GNUC_END_IGNORE_DEPRECATIONS
}

void set_context(JSGlobalContextRef context) {
    if (context == jsContext) return;
    const RetainedContext previous(jsContext);
    jsContext = context == nullptr ? nullptr : JSGlobalContextRetain(context);
    globalObject = context == nullptr ? nullptr : JSContextGetGlobalObject(context);
    forget_microtask_context();
}

void set_globals() {
    static PageId last_id = 0;
    const bool has_page = !attached_pages().empty();
    const AttachedPage* const current = has_page ? &attached_pages().back() : nullptr;
    current_id = has_page ? ++last_id : 0;
    web_frame = has_page ? current->frame.get() : nullptr;
    web_world = has_page ? current->world.get() : nullptr;
    set_context(has_page ? context_of(web_frame) : nullptr);
}

void forget_page(void* /*data*/, GObject* page) {
    std::list<AttachedPage>& pages = attached_pages();
    const auto found =
        std::ranges::find(pages, reinterpret_cast<WebKitWebPage*>(page), &AttachedPage::page);
    if (found == pages.end()) return;
    const bool was_current = &*found == &pages.back();
    std::list<AttachedPage> closed;  // released after the globals have changed
    closed.splice(closed.begin(), pages, found);
    if (was_current) set_globals();
}

}  // namespace

void attach_page(WebKitWebPage* page, WebKitFrame* frame, WebKitScriptWorld* world) {
    std::list<AttachedPage>& pages = attached_pages();
    std::list<AttachedPage> previous;  // released after the globals have changed
    const auto found = std::ranges::find(pages, page, &AttachedPage::page);
    if (found == pages.end()) {
        g_object_weak_ref(G_OBJECT(page), forget_page, nullptr);
    } else {
        previous.splice(previous.begin(), pages, found);
    }
    pages.push_back({page, retained(frame), retained(world)});
    set_globals();
}

PageId current_page() { return current_id; }

RetainedContext current_page_context() {
    if (web_frame != nullptr) {
        const JSGlobalContextRef shown = context_of(web_frame);
        if (shown == nullptr) return nullptr;
        set_context(shown);
    }
    return RetainedContext(jsContext == nullptr ? nullptr : JSGlobalContextRetain(jsContext));
}

}  // namespace kestrel
