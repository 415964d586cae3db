// Loads the built library and calls its entry as WebKit does: entry_driver LIBRARY USER_DATA
// EXTENSION, where USER_DATA is the text of a variant, or null, and EXTENSION is null or not. Lives
// until its input ends, unless the entry ends it, and then prints what the entry has set up.
#include <dlfcn.h>
#include <libintl.h>
#include <webkit2/webkit-web-extension.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

using Entry = void(WebKitWebExtension*, const GVariant*);

void* library;

const char* exported_text(const char* name) {
    return *static_cast<const char**>(dlsym(library, name));
}

bool is_attachment_connected() {
    WebKitScriptWorld* world = webkit_script_world_get_default();
    const guint signal = g_signal_lookup("window-object-cleared", WEBKIT_TYPE_SCRIPT_WORLD);
    return g_signal_handler_find(world, G_SIGNAL_MATCH_ID, signal, 0, nullptr, nullptr, nullptr) !=
           0;
}

void report() {
    std::printf("install root: %s\n", exported_text("g_quoroot"));
    std::printf("resources: %s\n", exported_text("g_resources"));
    std::printf("locale: %s\n", std::setlocale(LC_ALL, nullptr));
    std::printf("text domain: %s\n", textdomain(nullptr));
    std::printf("catalogue: %s\n", bindtextdomain("kestrel", nullptr));
    std::printf("code set: %s\n", bind_textdomain_codeset("kestrel", nullptr));
    std::printf("attachment: %s\n", is_attachment_connected() ? "connected" : "not connected");
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 4) return EXIT_FAILURE;
    const std::string_view user_data = argv[2];
    const std::string_view extension = argv[3];

    library = dlopen(argv[1], RTLD_NOW);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        return EXIT_FAILURE;
    }
    std::atexit(report);
    const auto entry =
        reinterpret_cast<Entry*>(dlsym(library, "webkit_web_extension_initialize_with_user_data"));
    GVariant* variant = user_data == "null"
                            ? nullptr
                            : g_variant_parse(nullptr, argv[2], nullptr, nullptr, nullptr);

    // The entry only compares the pointer with null.
    auto* const some_extension = reinterpret_cast<WebKitWebExtension*>(argv);
    errno = EDOM;
    entry(extension == "null" ? nullptr : some_extension, variant);

    std::puts("entry returned");
    while (std::getchar() != EOF) {
    }
}

// Asked for by the address sanitizer's runtime. At the end of a program that has loaded a library
// at run time and whose threads still live, as the link's reader does, LeakSanitizer itself crashes
// while it looks through their thread-local memory. Leaks of all that runs here are looked for in
// the other test programs.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options() {
    return "detect_leaks=0";
}
