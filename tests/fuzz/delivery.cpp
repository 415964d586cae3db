// The host's messages as they reach a real script context: type, then texts that end with NULs.
#include <array>

#include "extension/KsJS_proxy.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/quiet.h"
#include "tests/fuzz/script_page.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kestrel::fuzz::silence_error_lines();
    kestrel::fuzz::Input input(data, size);
    kestrel::fuzz::ScriptPage page;
    page.run("function f(){return arguments.length} function zyns_ajax_complete(){return f}");
    while (!input.is_empty()) {
        using Handler = void(int*, std::string*);
        constexpr std::array<Handler*, 3> kHandlers = {
            KsJS_proxy::insertJS, KsJS_proxy::zyns_cb_wrapper, KsJS_proxy::sendResourcesAndURL};
        Handler* const handler = kHandlers[input.byte() % kHandlers.size()];
        std::array<std::string, 6> strings;
        const std::size_t count = input.byte() % strings.size() + 1;
        for (std::size_t i = 0; i < count; ++i) strings[i] = input.text();
        handler(nullptr, strings.data());
        while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
        }
        page.drain();
    }
    return 0;
}
