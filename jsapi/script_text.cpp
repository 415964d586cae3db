#include "jsapi/script_text.h"

#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "base/error_line.h"
#include "jsapi/ascii_to_utf16.h"
#include "jsapi/utf16_to_utf8.h"

namespace kestrel {
namespace {

constexpr const char* kBreakout =
    "               KsJS_proxy::getStringFromJavascriptRef Breakout Error\n";

// JavaScriptCore stores most texts as Latin-1 and makes a copy for their UTF-16 units. Up to this
// length its own, slow conversion is faster than that.
constexpr std::size_t kUnitsNotWorthACopy = 12;

std::span<const char16_t> units_of(JSStringRef text) {
    static_assert(sizeof(JSChar) == sizeof(char16_t));
    return {reinterpret_cast<const char16_t*>(JSStringGetCharactersPtr(text)),
            JSStringGetLength(text)};
}

// JavaScriptCore decodes UTF-8 at 2 to 3 ns a byte. From this length on, ASCII is widened here, ten
// times as fast; the page's string then has two bytes a character.
constexpr std::size_t kWorthWidening = 128;

ScriptString string_of_ascii(std::string_view text) {
    const std::unique_ptr<char16_t[]> units(new (std::nothrow) char16_t[text.size()]);
    if (!units || !widen_ascii(text, units.get())) return nullptr;
    return ScriptString(
        JSStringCreateWithCharacters(reinterpret_cast<const JSChar*>(units.get()), text.size()));
}

}  // namespace

ScriptString make_script_string(const char* utf8) {
    const std::string_view text(utf8);
    ScriptString string = text.size() < kWorthWidening ? nullptr : string_of_ascii(text);
    return string ? std::move(string) : ScriptString(JSStringCreateWithUTF8CString(utf8));
}

ScriptString text_of(JSContextRef context, JSValueRef value) {
    ScriptString text(JSValueToStringCopy(context, value, nullptr));
    if (!text) error_line(kBreakout);
    return text;
}

std::size_t utf8_room(JSStringRef text) {
    return text == nullptr ? 0 : JSStringGetLength(text) * kMaxBytesOfUnit;
}

std::size_t utf8_size(JSStringRef text) { return text == nullptr ? 0 : utf8_size(units_of(text)); }

char* write_utf8(JSStringRef text, char* to) {
    if (text == nullptr) return to;
    const std::size_t units = JSStringGetLength(text);
    if (units > kUnitsNotWorthACopy) return write_utf8(units_of(text), to);
    *to = '\0';  // for a text that cannot be converted at all
    JSStringGetUTF8CString(text, to, units * kMaxBytesOfUnit + 1);
    return to + std::strlen(to);
}

void read_text(JSContextRef context, JSValueRef value, std::string& text) {
    const ScriptString source = text_of(context, value);
    if (!source) return;
    text.resize(utf8_room(source.get()) + 1);
    const char* const end = write_utf8(source.get(), text.data());
    text.resize(static_cast<std::size_t>(end - text.data()));
}

void check_exception(JSContextRef context, JSValueRef exception) {
    if (exception != nullptr) text_of(context, exception);
}

}  // namespace kestrel
