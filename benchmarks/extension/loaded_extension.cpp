#include "benchmarks/extension/loaded_extension.h"

#include <dlfcn.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace kestrel::bench {
namespace {

using Entry = void(WebKitWebExtension*, const GVariant*);

constexpr const char* kReaderLock = "_ZN13webkit_client2muE";

void* library = nullptr;

[[noreturn]] void exit_with_loader_error() {
    std::fprintf(stderr, "%s\n", dlerror());
    std::exit(EXIT_FAILURE);
}

template <typename T>
T* symbol(const char* name) {
    void* const found = dlsym(library, name);
    if (found == nullptr) exit_with_loader_error();
    return reinterpret_cast<T*>(found);
}

// The reader thread holds its lock from before the socket exists until it has sent the
// announcement.
void wait_for_announcement() {
    if (dlsym(library, kReaderLock) == nullptr) return;
    while (link_descriptor() == -1) g_thread_yield();
    const std::scoped_lock announced(*symbol<std::mutex>(kReaderLock));
}

}  // namespace

void load_extension(const char* path, WebKitWebExtension* web_extension, const Page& page) {
    library = dlopen(path, RTLD_NOW);
    if (library == nullptr) exit_with_loader_error();
    symbol<Entry>("webkit_web_extension_initialize_with_user_data")(web_extension, nullptr);
    wait_for_announcement();
    attach(page, 1);
}

int link_descriptor() {
    static int& server_fd = *symbol<int>("_ZN13webkit_client9server_fdE");
    return std::atomic_ref(server_fd).load();
}

double attach(const Page& page, int count) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        g_signal_emit_by_name(webkit_script_world_get_default(), "window-object-cleared", page.page,
                              page.main_frame);
    }
    const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
    return taken.count() / count;
}

}  // namespace kestrel::bench
