#include "jsapi/script_text.h"

#include <array>
#include <cstring>
#include <string>

#include "ipc/error_line.h"
#include "jsapi/KsJS_proxy.h"

namespace {

// Texts up to this many bytes need no allocation; a page chooses how long its texts are, so the
// stack never grows with them.
constexpr std::size_t kShortText = 1'024;

constexpr const char* kBreakout =
    "               KsJS_proxy::getStringFromJavascriptRef Breakout Error\n";

void assign_utf8(JSStringRef source, char* buffer, std::size_t size, std::string& text) {
    buffer[0] = '\0';  // for a text that cannot be converted at all
    JSStringGetUTF8CString(source, buffer, size);
    text.assign(buffer);
}

}  // namespace

void KsJS_proxy::getStringFromJavascriptRef(JSContextRef context, JSValueRef value,
                                            std::string& text) {
    const kestrel::ScriptString source(JSValueToStringCopy(context, value, nullptr));
    if (!source) {
        kestrel::error_line(kBreakout);
        return;
    }
    const std::size_t size = JSStringGetMaximumUTF8CStringSize(source.get());
    if (size <= kShortText) {
        std::array<char, kShortText> buffer;
        assign_utf8(source.get(), buffer.data(), buffer.size(), text);
    } else {
        const auto buffer = std::make_unique_for_overwrite<char[]>(size);
        assign_utf8(source.get(), buffer.get(), size, text);
    }
}

void KsJS_proxy::traceExceptionJS(JSContextRef context, JSValueRef exception) {
    if (exception == nullptr) return;
    const kestrel::ScriptString text(JSValueToStringCopy(context, exception, nullptr));
    if (!text) kestrel::error_line(kBreakout);
}
