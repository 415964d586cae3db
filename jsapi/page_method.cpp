#include "jsapi/page_method.h"

#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "base/error_line.h"
#include "ipc/frame_builder.h"
#include "ipc/send.h"
#include "jsapi/script_text.h"
#include "jsapi/utf16_to_utf8.h"

namespace kestrel {
namespace {

void refuse(const PageMethod& method, std::size_t got) {
    std::string line(15, ' ');
    line += method.error;
    line += std::to_string(got);
    line += " arguments, expected ";
    line += std::to_string(method.expected);
    line += method.line_end;
    error_line(line);
}

// The arguments as read, by position: each is a text or a number, as its row says. A text that is
// not to be read, or cannot be converted, is null and sent as "".
struct ReadArguments {
    std::array<ScriptString, kMaxArguments> texts;
    std::array<std::int32_t, kMaxArguments> numbers{};
};

ReadArguments read_arguments(const PageMethod& method, JSContextRef context,
                             std::span<const JSValueRef> arguments) {
    ReadArguments read;
    for (std::size_t i = 0; i < method.reads.size(); ++i) {
        switch (method.reads[i]) {
            case Read::string_only:
                if (JSValueGetType(context, arguments[i]) != kJSTypeString) break;
                [[fallthrough]];
            case Read::text:
                read.texts[i] = text_of(context, arguments[i]);
                break;
            case Read::number:
                read.numbers[i] = to_int32(JSValueToNumber(context, arguments[i], nullptr));
                break;
            case Read::ignored:
                break;
        }
    }
    return read;
}

// Wraps around.
std::int32_t difference(std::int32_t minuend, std::int32_t subtrahend) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(minuend) -
                                     static_cast<std::uint32_t>(subtrahend));
}

std::int32_t value_of(Item item, const ReadArguments& read) {
    const std::int32_t value = read.numbers[static_cast<std::size_t>(item.argument)];
    if (item.subtrahend == Item::kNothing) return value;
    return difference(value, read.numbers[static_cast<std::size_t>(item.subtrahend)]);
}

JSStringRef string_of(Item item, const ReadArguments& read) {
    return read.texts[static_cast<std::size_t>(item.argument)].get();
}

// Room for the row's lists. Counting the bytes of large texts first is better than asking for three
// times the memory that they may need.
std::size_t payload_room(const PageMethod& method, const ReadArguments& read) {
    constexpr std::size_t kCheap = 4UL * 1024 * 1024;
    const auto sum = [&](std::size_t (*size)(JSStringRef)) {
        std::size_t total = method.ints.size() * kMaxIntItem + method.strings.size();
        for (const Item item : method.strings) total += size(string_of(item, read));
        return total;
    };
    const std::size_t room = sum(utf8_room);
    return room <= kCheap ? room : sum(utf8_size) + kUtf8Slack;
}

void send_lists(const PageMethod& method, std::int32_t command, const ReadArguments& read) {
    FrameBuilder builder(command, payload_room(method, read));
    if (!builder.is_open()) return;
    for (const Item item : method.ints) builder.add(value_of(item, read));
    for (const Item item : method.strings) {
        builder.end_string(write_utf8(string_of(item, read), builder.begin_string()));
    }
    send(*builder.finish());
}

}  // namespace

std::int32_t to_int32(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    const double whole = std::trunc(number);
    if (!(whole >= Limits::min() && whole <= Limits::max())) return Limits::min();
    return static_cast<std::int32_t>(whole);
}

JSValueRef run_page_method(const PageMethod& method, std::int32_t command, JSContextRef context,
                           std::span<const JSValueRef> arguments) {
    if (method.expected != PageMethod::kAnyCount &&
        arguments.size() != static_cast<std::size_t>(method.expected)) {
        refuse(method, arguments.size());
        return JSValueMakeUndefined(context);
    }
    send_lists(method, command, read_arguments(method, context, arguments));
    return JSValueMakeUndefined(context);
}

}  // namespace kestrel
