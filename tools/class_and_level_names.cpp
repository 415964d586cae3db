#include "tools/class_and_level_names.h"

#include <strings.h>

#include "log/levels_and_classes.h"
#include "log/zynlog.h"
#include "program/translation.h"
#include "program/usage_error.h"

namespace kestrel::tools {
namespace {

using logging::kClassTable;
using logging::kLevelTable;

template <typename Table>
std::uint32_t index_by_name(const std::string& name, const char* error_text, const Table& table,
                            std::uint32_t first, std::uint32_t last) {
    std::string names;
    for (std::uint32_t index = first; index <= last; ++index) {
        if (strcasecmp(name.c_str(), table[index].name) == 0) return index;
        names += std::string(names.empty() ? "" : " ") + table[index].name;
    }
    throw UsageError(formatted(error_text, name.c_str(), names.c_str()));
}

std::uint32_t level_between(const std::string& name, std::uint32_t first, std::uint32_t last) {
    return index_by_name(name, translate("unknown level '%s'; valid are: %s"), kLevelTable, first,
                         last);
}

}  // namespace

std::uint32_t class_by_name(const std::string& name) {
    return index_by_name(name, translate("unknown class '%s'; valid are: %s"), kClassTable, 0,
                         kLogClassCount - 1);
}

std::uint32_t level_by_name(const std::string& name) {
    return level_between(name, 0, kLogLevelCount - 1);
}

std::uint32_t line_level_by_name(const std::string& name) {
    return level_between(name, kVerbose, kAlwaysOn);
}

std::string class_name(std::uint32_t log_class) {
    return log_class < kLogClassCount ? kClassTable[log_class].name : std::to_string(log_class);
}

std::string level_name(std::uint32_t level) {
    return level < kLogLevelCount ? kLevelTable[level].name : std::to_string(level);
}

bool is_within(std::uint32_t log_class, std::uint32_t ancestor) {
    while (log_class != ancestor && log_class < kLogClassCount) {
        log_class = static_cast<std::uint32_t>(kClassTable[log_class].parent);
    }
    return log_class == ancestor;
}

}  // namespace kestrel::tools
