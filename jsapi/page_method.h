// Common dispatcher of all functions of `external`.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <cstdint>
#include <span>

#include "jsapi/method_table.h"

namespace kestrel {

// Checks the argument count, converts the arguments and sends the message of type `command`. Always
// returns undefined; throws nothing.
JSValueRef run_page_method(const PageMethod& method, std::int32_t command, JSContextRef context,
                           std::span<const JSValueRef> arguments);

// The JavaScriptCore callback of one row.
template <std::size_t index>
JSValueRef call_page_method(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                            size_t count, const JSValueRef arguments[], JSValueRef* /*exception*/) {
    constexpr std::int32_t command = find_type(kToHost, kPageMethods[index].member)->code;
    return run_page_method(kPageMethods[index], command, context, {arguments, count});
}

// The index of the row of a member; a name without a row does not compile.
consteval std::size_t row_of(std::string_view member) {
    for (std::size_t i = 0; i < kPageMethods.size(); ++i) {
        if (kPageMethods[i].member == member) return i;
    }
    throw "no such page method";
}

// `number` truncated towards zero; INT32_MIN for NaN and numbers out of range.
std::int32_t to_int32(double number);

}  // namespace kestrel
