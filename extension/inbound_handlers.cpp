// What the host's messages do. Each handler starts on the link's reader thread; whatever touches
// the page goes on in the main loop, in the order in which the messages came.
#include <glib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <list>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "extension/page_delivery.h"
#include "extension/resources.h"
#include "ipc/frame.h"
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

// Scripts and answers are queued alike, so they reach the page in the order in which they came.
void queue_script(std::string script) {
    g_idle_add_full(
        G_PRIORITY_DEFAULT_IDLE,
        [](void* data) -> gboolean {
            kestrel::run_script(*static_cast<std::string*>(data));
            return G_SOURCE_REMOVE;
        },
        new std::string(std::move(script)),
        [](void* data) { delete static_cast<std::string*>(data); });
}

void queue_answer(std::unique_ptr<std::list<char*>> answer) {
    g_idle_add(
        [](void* data) -> gboolean {
            return KsJS_proxy::szyns_cb_wrapper(static_cast<std::list<char*>*>(data));
        },
        answer.release());
}

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
        queue_script(script);
    }
}

void KsJS_proxy::zyns_cb_wrapper(int* /*ints*/, std::string* strings) {
    std::vector<std::unique_ptr<char, kestrel::FreeDeleter>> texts;
    const bool is_ajax = strings[0].find(kestrel::kAjaxCompletion) != std::string::npos;
    for (std::size_t i = 0; i <= (is_ajax ? kestrel::kAjaxArguments : 0); ++i) {
        texts.emplace_back(strdup(strings[i].c_str()));
        if (!texts.back()) throw std::bad_alloc();
    }
    auto answer = std::make_unique<std::list<char*>>(texts.size());
    std::ranges::transform(texts, answer->begin(), [](auto& text) { return text.release(); });
    queue_answer(std::move(answer));
}

int KsJS_proxy::szyns_cb_wrapper(std::list<char*>* answer) {
    const std::unique_ptr<std::list<char*>> list(answer);
    std::vector<std::unique_ptr<char, kestrel::FreeDeleter>> texts(list->begin(), list->end());
    if (texts.empty()) return G_SOURCE_REMOVE;

    std::vector<const char*> arguments;
    for (auto text = texts.begin() + 1; text != texts.end(); ++text) {
        arguments.push_back(text->get());
    }
    kestrel::deliver_answer(texts.front().get(), arguments);
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
