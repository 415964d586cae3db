#include "benchmarks/extension/loaded_extension.h"

#include <JavaScriptCore/JavaScript.h>
#include <dlfcn.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "benchmarks/extension/library_facts.h"

namespace kestrel::bench {
namespace {

using Entry = void(WebKitWebExtension*, const GVariant*);

constexpr int kFirstCalls = 100;

void* library = nullptr;

template <typename T>
T* symbol(const char* name) {
    void* const found = dlsym(library, name);
    if (found == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(EXIT_FAILURE);
    }
    return reinterpret_cast<T*>(found);
}

// The reader holds its lock from before there is a socket until the announcement has been sent.
void wait_for_announcement() {
    auto& lock = *symbol<std::mutex>("_ZN13webkit_client2muE");
    while (link_descriptor() == -1) g_thread_yield();
    const std::scoped_lock announced(lock);
}

void run_often(WebKitFrame* frame, const char* text) {
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    const JSGlobalContextRef context = webkit_frame_get_javascript_global_context(frame);
    G_GNUC_END_IGNORE_DEPRECATIONS
    const JSStringRef script = JSStringCreateWithUTF8CString(text);
    for (int i = 0; i < kFirstCalls; ++i) {
        JSEvaluateScript(context, script, nullptr, nullptr, 1, nullptr);
    }
    JSStringRelease(script);
}

}  // namespace

std::string load_extension(const Paths& paths, WebKitWebExtension* web_extension,
                           const Shown& shown) {
    const double empty_load = nanoseconds_to_load(paths.empty_library.c_str());
    const double load = nanoseconds_to_load(paths.extension.c_str());
    run_often(shown.frame, "bench.now('k', 'v', 'cb')");  // what script itself needs
    const std::size_t before = resident_bytes();
    library = dlopen(paths.extension.c_str(), RTLD_NOW);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(EXIT_FAILURE);
    }
    symbol<Entry>("webkit_web_extension_initialize_with_user_data")(web_extension, nullptr);
    wait_for_announcement();
    attach(shown, 1);
    run_often(shown.frame, "external.setItem('k', 'v', 'cb')");
    const std::size_t resident = resident_bytes() - before;
    const LibraryFacts facts = facts_of(library);

    char* const text =
        g_strdup_printf(R"({"load_empty_library": %.0f, "load_library": %.0f, "relocations": %zu, )"
                        R"("constructors": %zu, "resident_bytes": %zu})",
                        empty_load, load, facts.relocations, facts.constructors, resident);
    std::string json = text;
    g_free(text);
    return json;
}

int link_descriptor() {
    static int& server_fd = *symbol<int>("_ZN13webkit_client9server_fdE");
    return std::atomic_ref(server_fd).load();
}

double attach(const Shown& shown, int count) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        g_signal_emit_by_name(webkit_script_world_get_default(), "window-object-cleared",
                              shown.page, shown.frame);
    }
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    return taken.count() / count;
}

}  // namespace kestrel::bench
