#include "jsapi/page_method.h"

#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <string_view>

#include "ipc/error_line.h"
#include "ipc/send.h"
#include "jsapi/KsJS_proxy.h"

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

// The arguments as read, by position; a place holds a text or a number, as its row says.
struct ReadArguments {
    std::array<std::string, kMaxArguments> texts;
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
                KsJS_proxy::getStringFromJavascriptRef(context, arguments[i], read.texts[i]);
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

// Wraps around, as 32-bit registers do.
std::int32_t difference(std::int32_t minuend, std::int32_t subtrahend) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(minuend) -
                                     static_cast<std::uint32_t>(subtrahend));
}

void send_lists(const PageMethod& method, std::int32_t command, const ReadArguments& read) {
    std::array<int, kMaxArguments> ints{};
    std::array<std::string_view, kMaxArguments> strings;
    for (std::size_t i = 0; i < method.ints.size(); ++i) {
        const Item item = method.ints[i];
        ints[i] = read.numbers[static_cast<std::size_t>(item.argument)];
        if (item.subtrahend != Item::kNothing) {
            ints[i] = difference(ints[i], read.numbers[static_cast<std::size_t>(item.subtrahend)]);
        }
    }
    for (std::size_t i = 0; i < method.strings.size(); ++i) {
        strings[i] = read.texts[static_cast<std::size_t>(method.strings[i].argument)];
    }
    send(command, std::span(ints).first(method.ints.size()),
         std::span(strings).first(method.strings.size()));
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
    try {
        send_lists(method, command, read_arguments(method, context, arguments));
    } catch (const std::bad_alloc&) {
        error_line("KsJS_proxy: out of memory, message not sent\n");
    }
    return JSValueMakeUndefined(context);
}

}  // namespace kestrel
