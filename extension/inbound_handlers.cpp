// What the host's messages do. Each handler starts on the link's reader thread; whatever touches
// the page goes on in the main loop, in the order in which the messages came.
#include <glib.h>

#include <array>
#include <cstdlib>
#include <list>
#include <memory>
#include <string>

#include "extension/main_loop_queue.h"
#include "extension/page_delivery.h"
#include "extension/resources.h"
#include "ipc/never_destroyed.h"
#include "ipc/protocol.h"
#include "ipc/reader.h"
#include "ipc/send.h"
#include "jsapi/KsJS_proxy.h"

[[gnu::visibility("default")]] kestrel::NeverDestroyed<std::string> resources_storage asm(
    "_ZN10KsJS_proxy9resourcesB5cxx11E");
[[gnu::visibility("default")]] kestrel::NeverDestroyed<std::string> preload_url_storage asm(
    "_ZN10KsJS_proxy10preloadURLB5cxx11E");

namespace {

struct FreeTexts {
    void operator()(std::list<char*>* texts) const {
        for (char* text : *texts) std::free(text);
        delete texts;
    }
};

}  // namespace

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
        kestrel::run_in_main_loop([script = std::string(script)] { kestrel::run_script(script); });
    }
}

void KsJS_proxy::zyns_cb_wrapper(int* /*ints*/, std::string* strings) {
    const bool is_ajax = strings[0].find(kestrel::kAjaxCompletion) != std::string::npos;
    const std::size_t size = 1 + (is_ajax ? kestrel::kAjaxArguments : 0);
    kestrel::run_in_main_loop(
        [answer = kestrel::Answer(strings, strings + size)] { kestrel::deliver_answer(answer); });
}

int KsJS_proxy::szyns_cb_wrapper(std::list<char*>* answer) {
    const std::unique_ptr<std::list<char*>, FreeTexts> texts(answer);
    if (!texts->empty()) kestrel::deliver_answer(kestrel::Answer(texts->begin(), texts->end()));
    return G_SOURCE_REMOVE;
}

void KsJS_proxy::sendResourcesAndURL(int* /*ints*/, std::string* strings) {
    preloadURL = strings[0];
    kestrel::set_resources(strings[1]);
    readyToLoadURL(preloadURL);
}

// The URL comes by value because the exported signature says so.
void KsJS_proxy::readyToLoadURL(std::string url) {  // NOLINT
    kestrel::send(kestrel::to_host("resourcesTaken"), {},
                  std::array{std::string_view(url.c_str())});
}
