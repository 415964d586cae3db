#include "workbench/answers/script_literal.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kestrel {
namespace {

struct Escape {
    std::string_view special;
    std::string_view escaped;
};

// In JSON, these occur within strings only. Older script engines end a line at U+2028 and U+2029
// even there.
constexpr std::array kEscapes = {
    Escape{"</", "<\\/"},
    Escape{"\xe2\x80\xa8", "\\u2028"},
    Escape{"\xe2\x80\xa9", "\\u2029"},
};

}  // namespace

std::string script_literal(const ScriptValue& value) {
    const std::string json = value.dump(-1, ' ', false, ScriptValue::error_handler_t::replace);
    std::string literal;
    literal.reserve(json.size());
    for (std::string_view rest = json; !rest.empty();) {
        const auto* const escape = std::ranges::find_if(
            kEscapes, [&](const Escape& each) { return rest.starts_with(each.special); });
        const bool is_special = escape != kEscapes.end();
        const std::size_t length = is_special ? escape->special.size() : 1;
        literal += is_special ? escape->escaped : rest.substr(0, 1);
        rest.remove_prefix(length);
    }
    return literal;
}

}  // namespace kestrel
