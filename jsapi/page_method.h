// The frame in which every function of `external` runs.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <cstdint>
#include <span>

#include "jsapi/method_table.h"

namespace kestrel {

// Checks the argument count, reads the arguments, sends the message of type `command`. Returns
// undefined whatever happens; nothing is thrown.
JSValueRef run_page_method(const PageMethod& method, std::int32_t command, JSContextRef context,
                           std::span<const JSValueRef> arguments);

// The JavaScriptCore callback of one row.
template <std::size_t index>
JSValueRef call_page_method(JSContextRef context, JSObjectRef /*function*/, JSObjectRef /*self*/,
                            size_t count, const JSValueRef arguments[], JSValueRef* /*exception*/) {
    constexpr std::int32_t command = find_type(kToHost, kPageMethods[index].member)->code;
    return run_page_method(kPageMethods[index], command, context, {arguments, count});
}

// The index of the row whose member is called so; a name without a row does not compile.
consteval std::size_t row_of(std::string_view member) {
    for (std::size_t i = 0; i < kPageMethods.size(); ++i) {
        if (kPageMethods[i].member == member) return i;
    }
    throw "no such page method";
}

// `number` cut towards zero to 32 bits; INT32_MIN for NaN and for what lies outside their range.
std::int32_t to_int32(double number);

}  // namespace kestrel
