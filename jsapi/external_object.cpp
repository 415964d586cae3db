#include "jsapi/external_object.h"

#include <array>
#include <utility>

#include "jsapi/page_method.h"
#include "jsapi/script_text.h"

namespace {

constexpr std::size_t kMethods = kestrel::kPageMethods.size();

template <std::size_t... index>
constexpr std::array<JSStaticFunction, kMethods + 1> static_functions(
    std::index_sequence<index...> /*rows*/) {
    return {{{kestrel::kPageMethods[index].name.data(), kestrel::call_page_method<index>,
              kJSPropertyAttributeReadOnly}...,
             {nullptr, nullptr, 0}}};
}

constexpr auto kStaticFunctions = static_functions(std::make_index_sequence<kMethods>());

// One class serves every page of the process.
JSClassRef external_class() {
    static const JSClassRef made = [] {
        JSClassDefinition definition{};
        definition.className = "JSAPI";
        definition.staticFunctions = kStaticFunctions.data();
        return JSClassCreate(&definition);
    }();
    return made;
}

}  // namespace

void kestrel::add_external_object(JSGlobalContextRef context, JSObjectRef global) {
    const JSObjectRef external = JSObjectMake(context, external_class(), nullptr);
    const ScriptString name = make_script_string("external");
    JSObjectSetProperty(context, global, name.get(), external, kJSPropertyAttributeNone, nullptr);
}
