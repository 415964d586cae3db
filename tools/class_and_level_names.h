// Converts the names of classes and levels. Uses the fixed tables, so that names can be checked
// before the settings are opened.
#pragma once

#include <cstdint>
#include <string>

namespace kestrel::tools {

// The index of a name, ignoring case. Throws UsageError with the list of valid names.
std::uint32_t class_by_name(const std::string& name);

// A level of a class: INHERIT to NONE.
std::uint32_t level_by_name(const std::string& name);

// A level of a line: VERBOSE to AOL.
std::uint32_t line_level_by_name(const std::string& name);

// The name, or the number if it has none.
std::string class_name(std::uint32_t log_class);
std::string level_name(std::uint32_t level);

// Whether `log_class` is `ancestor` or one of its descendants.
bool is_within(std::uint32_t log_class, std::uint32_t ancestor);

}  // namespace kestrel::tools
