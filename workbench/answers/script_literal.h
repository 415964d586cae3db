// Values as script source: text from outside becomes script through this function only, and so
// stays data.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace kestrel {

// A value for the page; members keep their order.
using ScriptValue = nlohmann::ordered_json;

// The value as JSON that is safe in script of any version and within HTML: U+2028, U+2029 and "</"
// are escaped. Bytes that are not UTF-8 become U+FFFD.
std::string script_literal(const ScriptValue& value);

}  // namespace kestrel
