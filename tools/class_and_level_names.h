// Classes and levels by the names that people use. From the tables, so that a wrong name is found
// before the settings are touched.
#pragma once

#include <cstdint>
#include <string>

namespace kestrel::tools {

// The index that a name, in capitals or not, stands for. Throws UsageError with the names that
// there are.
std::uint32_t class_by_name(const std::string& name);

// INHERIT to NONE, as a class may have it.
std::uint32_t level_by_name(const std::string& name);

// VERBOSE to AOL, as a line may have it.
std::uint32_t line_level_by_name(const std::string& name);

// The name, or the number of one that has none.
std::string class_name(std::uint32_t log_class);
std::string level_name(std::uint32_t level);

// Whether `log_class` is `ancestor` or below it.
bool is_within(std::uint32_t log_class, std::uint32_t ancestor);

}  // namespace kestrel::tools
