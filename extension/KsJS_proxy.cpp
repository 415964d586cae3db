// The exported class, but for the page functions. The handlers of the host's messages are called on
// the link's reader thread; what touches the page is queued for the main loop, in the order in
// which the messages came.
#include "extension/KsJS_proxy.h"

#include <glib.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <list>
#include <memory>
#include <string>
#include <utility>

#include "base/never_destroyed.h"
#include "extension/current_page.h"
#include "extension/main_loop_queue.h"
#include "extension/microtasks.h"
#include "extension/page_delivery.h"
#include "extension/resources.h"
#include "ipc/protocol.h"
#include "ipc/reader.h"
#include "ipc/send.h"
#include "jsapi/external_object.h"
#include "jsapi/script_text.h"

[[gnu::visibility("default")]] kestrel::NeverDestroyed<std::string> resources_storage asm(
    "_ZN10KsJS_proxy9resourcesB5cxx11E");
[[gnu::visibility("default")]] kestrel::NeverDestroyed<std::string> preload_url_storage asm(
    "_ZN10KsJS_proxy10preloadURLB5cxx11E");

namespace {

// Scripts, and resources behind them, that the main loop has not finished.
constinit std::atomic<int> unfinished = 0;

// Counted after queueing, which may throw: the thread that queued it sees the count either way.
template <typename Task>
void queue_in_order(Task task) {
    kestrel::run_in_main_loop([task = std::move(task)] {
        task();
        --unfinished;
    });
    ++unfinished;
}

void take_over(const std::string& url, const std::string& resources) {
    KsJS_proxy::preloadURL = url;
    kestrel::set_resources(resources);
    KsJS_proxy::readyToLoadURL(url);
}

struct FreeTexts {
    void operator()(std::list<char*>* texts) const {
        for (char* text : *texts) std::free(text);
        delete texts;
    }
};

}  // namespace

void KsJS_proxy::loadJSAPI(JSGlobalContextRef context, JSObjectRef global) {
    kestrel::add_external_object(context, global);
}

void KsJS_proxy::getStringFromJavascriptRef(JSContextRef context, JSValueRef value,
                                            std::string& text) {
    kestrel::read_text(context, value, text);
}

void KsJS_proxy::traceExceptionJS(JSContextRef context, JSValueRef exception) {
    kestrel::check_exception(context, exception);
}

webkit_client::InboundHandler* KsJS_proxy::getFunctionArray() {
    auto table = std::make_unique<webkit_client::InboundHandler[]>(kestrel::kInboundHandlerSlots);
    table[kestrel::to_page("script")] = insertJS;
    table[kestrel::to_page("answer")] = zyns_cb_wrapper;
    table[kestrel::to_page("resourcesAndUrl")] = sendResourcesAndURL;
    return table.release();
}

void KsJS_proxy::insertJS(int* /*ints*/, std::string* strings) {
    const std::string& script = strings[0];
    if (script.empty()) return;
    GMainContext* main_context = g_main_context_default();
    if (!kestrel::on_reader_thread() && g_main_context_acquire(main_context) != FALSE) {
        kestrel::run_script(script);
        g_main_context_release(main_context);
    } else {
        queue_in_order([page = kestrel::current_page(), script] {
            kestrel::run_script_in(page, script);
            kestrel::run_microtasks();
        });
    }
}

void KsJS_proxy::zyns_cb_wrapper(int* /*ints*/, std::string* strings) {
    const bool is_ajax = strings[0].find(kestrel::kAjaxCompletion) != std::string::npos;
    const std::size_t size = 1 + (is_ajax ? kestrel::kAjaxArguments : 0);
    kestrel::run_in_main_loop([answer = kestrel::Answer(strings, strings + size)] {
        kestrel::deliver_answer(answer);
        kestrel::run_microtasks();
    });
}

int KsJS_proxy::szyns_cb_wrapper(std::list<char*>* answer) {
    const std::unique_ptr<std::list<char*>, FreeTexts> texts(answer);
    if (!texts->empty()) kestrel::deliver_answer(kestrel::Answer(texts->begin(), texts->end()));
    return G_SOURCE_REMOVE;
}

// The host loads the next page when it is told; scripts sent before must have run by then.
void KsJS_proxy::sendResourcesAndURL(int* /*ints*/, std::string* strings) {
    const std::string& url = strings[0];
    const std::string& text = strings[1];
    if (unfinished == 0) {
        take_over(url, text);
    } else {
        queue_in_order([url, text] { take_over(url, text); });
    }
}

// The URL comes by value because the exported signature says so.
void KsJS_proxy::readyToLoadURL(std::string url) {  // NOLINT
    kestrel::send(kestrel::to_host("resourcesTaken"), {},
                  std::array{std::string_view(url.c_str())});
}
