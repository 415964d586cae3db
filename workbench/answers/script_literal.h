// Values as script source. Whatever they hold, they stay values: text from outside becomes script
// through these functions and no other way.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace kestrel {

// A string literal that is JSON as well. Safe in script of any age and within HTML: U+2028, U+2029
// and "</" are escaped. Bytes that are not UTF-8 become U+FFFD.
std::string script_string(std::string_view text);

inline std::string script_boolean(bool value) { return value ? "true" : "false"; }

// An array literal; the elements are literals already.
std::string script_array(std::span<const std::string> elements);

// An array literal of string literals.
std::string script_strings(std::span<const std::string> texts);

// An object literal; the values are literals already.
std::string script_object(std::initializer_list<std::pair<std::string_view, std::string>> members);

}  // namespace kestrel
