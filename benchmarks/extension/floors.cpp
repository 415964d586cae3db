#include "benchmarks/extension/floors.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "benchmarks/extension/loaded_extension.h"

namespace kestrel::bench {
namespace {

constexpr std::size_t kHeaderSize = 16;

std::vector<char> frame(kHeaderSize);

// One write, unless a signal interrupts it: JavaScriptCore stops threads with signals.
void write_whole(const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(link_descriptor(), bytes, size);
        if (written < 0 && errno != EINTR) std::abort();
        if (written < 0) continue;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

}  // namespace

JSValueRef prepare(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                   size_t /*count*/, const JSValueRef arguments[], JSValueRef* exception) {
    frame.assign(static_cast<std::size_t>(JSValueToNumber(context, arguments[0], exception)), 'x');
    return JSValueMakeUndefined(context);
}

JSValueRef read_texts(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                      size_t count, const JSValueRef arguments[], JSValueRef* exception) {
    constexpr char kAbsent = 0x01;      // in none of the texts, so that memchr reads all
    constexpr std::size_t kShort = 12;  // up to here, JavaScriptCore's conversion is faster
    std::size_t at = kHeaderSize;
    for (std::size_t i = 0; i < count; ++i) {
        const JSStringRef text = JSValueToStringCopy(context, arguments[i], exception);
        const std::size_t length = JSStringGetLength(text);
        if (length > kShort) {
            const auto* const half = reinterpret_cast<const char*>(JSStringGetCharactersPtr(text));
            std::memcpy(frame.data() + at, half, length);
            if (std::memchr(half + length, kAbsent, length) != nullptr) std::abort();
        } else {
            JSStringGetUTF8CString(text, frame.data() + at, frame.size() - at);
        }
        at += length + 1;
        JSStringRelease(text);
    }
    write_whole(frame.data(), frame.size());
    return JSValueMakeUndefined(context);
}

JSValueRef convert(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                   size_t count, const JSValueRef arguments[], JSValueRef* exception) {
    std::size_t at = kHeaderSize;
    for (std::size_t i = 0; i < count; ++i) {
        const JSStringRef text = JSValueToStringCopy(context, arguments[i], exception);
        at += JSStringGetUTF8CString(text, frame.data() + at, frame.size() - at);
        JSStringRelease(text);
    }
    write_whole(frame.data(), at);
    return JSValueMakeUndefined(context);
}

}  // namespace kestrel::bench
