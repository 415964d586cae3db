// Calls of `external` by a page. Each call takes one byte for the function, one for the number of
// arguments, and one for each argument, which selects a difficult value or a string.
#include <array>
#include <string>
#include <string_view>

#include "jsapi/method_table.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/quiet.h"
#include "tests/fuzz/script_page.h"

namespace {

constexpr auto kValues = std::to_array<std::string_view>({
    "undefined",
    "null",
    "true",
    "0",
    "-0",
    "NaN",
    "Infinity",
    "-2147483649",
    "4294967296.9",
    "123456789012345678901234567890n",
    "Symbol('s')",
    "'\\ud800'",
    "'a\\udc00b'",
    "'a\\0b'",
    "''",
    "'x'.repeat(1100)",
    "'\\u{1f600}'.repeat(400)",
    "[1,[2,[3]]]",
    "(() => 1)",
    "function f(){}",
    "/x/g",
    "new Date(NaN)",
    "new String('s')",
    "{toString(){throw 1}}",
    "{toString(){throw {toString(){throw 2}}}}",
    "{toString:null,valueOf:null}",
    "{toString(){return {}}}",
    "{toString(){return Symbol()}}",
    "{toString(){external.refresh(); return 'inner'}}",
    "{toString(){return String(this)}}",
    "{valueOf(){throw 1}}",
    "{valueOf(){external.ready()}}",
    "{get toString(){throw 3}}",
    "new Proxy({},{get(){throw 4}})",
    "(() => {const r = Proxy.revocable({},{}); r.revoke(); return r.proxy})()",
    "new Proxy(function(){},{})",
    "Object.create(null)",
    "external",
    "globalThis",
    "external.ajax",
    "{toString(){delete globalThis.external; return 'gone'}}",
    "{toString(){String.prototype.toString = () => {throw 5}; return 'tampered'}}",
    "{[Symbol.toPrimitive](){return 'primitive'}}",
    "{[Symbol.toPrimitive]: 1}",
});

// Any bytes as a valid script literal.
std::string literal(std::string_view bytes) {
    std::string text = "'";
    for (const char c : bytes) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(c);
        text += "\\u";
        text += byte >= 0xf8U ? "d8" : "00";  // surrogates too
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0xfU];
    }
    return text + "'";
}

std::string argument(kestrel::fuzz::Input& input) {
    const std::size_t choice = input.byte();
    if (choice < kValues.size()) return std::string(kValues[choice]);
    return literal(input.bytes(choice - kValues.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kestrel::fuzz::silence_error_lines();
    kestrel::fuzz::Input input(data, size);
    kestrel::fuzz::ScriptPage page;
    for (int calls = 0; calls < 40 && !input.is_empty(); ++calls) {
        const auto& methods = kestrel::kPageMethods;
        const kestrel::PageMethod& method = methods[input.byte() % methods.size()];
        std::string call = "external." + std::string(method.name) + "(";
        const std::size_t count = input.byte() % 8;
        for (std::size_t i = 0; i < count; ++i) {
            if (i > 0) call += ',';
            call += argument(input);
        }
        page.run("var thrown = ''; try { if (" + call + ") !== undefined) thrown = 'a value' }" +
                 " catch (e) { thrown = 'an exception' }");
        const int sent = page.drain();
        const bool is_counted = method.expected != kestrel::PageMethod::kAnyCount;
        const bool is_refused = is_counted && count != static_cast<std::size_t>(method.expected);
        if (is_refused) kestrel::fuzz::check(sent == 0);
        page.run("globalThis.external || 0");
    }
    return 0;
}
