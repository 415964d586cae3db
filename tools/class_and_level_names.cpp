#include "tools/class_and_level_names.h"

#include <strings.h>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tools/usage_error.h"

namespace kestrel::tools {
namespace {

using NameOf = const char* (*)(std::uint32_t);

std::uint32_t index_by_name(const std::string& name, const std::string& kind, NameOf name_of,
                            std::uint32_t first, std::uint32_t last) {
    std::string names;
    for (std::uint32_t index = first; index <= last; ++index) {
        if (strcasecmp(name.c_str(), name_of(index)) == 0) return index;
        names += std::string(names.empty() ? "" : " ") + name_of(index);
    }
    throw UsageError("there is no " + kind + " '" + name + "'; valid are: " + names);
}

}  // namespace

std::uint32_t class_by_name(const std::string& name) {
    return index_by_name(name, "class", ZynLogGetClassName, 0, kLogClassCount - 1);
}

std::uint32_t level_by_name(const std::string& name) {
    return index_by_name(name, "level", ZynLogGetLevelName, 0, kLogLevelCount - 1);
}

std::uint32_t line_level_by_name(const std::string& name) {
    return index_by_name(name, "level", ZynLogGetLevelName, kVerbose, kAlwaysOn);
}

std::string class_name(std::uint32_t log_class) {
    const char* const name = ZynLogGetClassName(log_class);
    return name == nullptr ? std::to_string(log_class) : name;
}

std::string level_name(std::uint32_t level) {
    const char* const name = ZynLogGetLevelName(level);
    return name == nullptr ? std::to_string(level) : name;
}

bool is_within(std::uint32_t log_class, std::uint32_t ancestor) {
    while (log_class != ancestor && log_class < kLogClassCount) {
        log_class = ZynLogGetParent(log_class);
    }
    return log_class == ancestor;
}

}  // namespace kestrel::tools
