// The fixed tables of levels and classes. Other processes of the client family and the log daemon
// use their indices.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "log/zynlog_config.h"

namespace kestrel::logging {

// Texts are padded with NULs.
struct LogLevelRecord {
    char name[32];
    char displayName[32];
};

struct LogClassRecord {
    char name[32];
    char displayName[32];
    std::int32_t parent;  // -1 for the root
};

inline constexpr std::array<LogLevelRecord, kLogLevelCount> kLevelTable{{
    {"INHERIT", "Inherited"},
    {"VERBOSE", "Verbose"},
    {"INFO", "Information"},
    {"WARNING", "Warnings"},
    {"ERROR", "Errors"},
    {"FATAL", "Fatal Errors"},
    {"AOL", "Always On Logging"},
    {"NONE", "Disabled"},
}};

// The row of a component that this library does not know: "CLASS07", "Class 7", a child of the
// root.
constexpr LogClassRecord reserved_class(std::uint32_t index) {
    LogClassRecord row{"CLASS00", "Class ", 0};
    const char tens = static_cast<char>('0' + index / 10);
    const char ones = static_cast<char>('0' + index % 10);
    row.name[5] = tens;
    row.name[6] = ones;
    char* digit = row.displayName + std::string_view(row.displayName).size();
    if (index >= 10) *digit++ = tens;
    *digit = ones;
    return row;
}

constexpr std::array<LogClassRecord, kLogClassCount> class_table() {
    std::array<LogClassRecord, kLogClassCount> table{};
    for (std::uint32_t index = 0; index < table.size(); ++index) {
        table[index] = reserved_class(index);
    }
    table[0] = {"ALL", "All", -1};
    table[28] = {"KS", "Kestrel", 0};
    table[29] = {"KSEXT", "Kestrel Extensions", 28};
    table[41] = {"WEBKIT", "Webkit", 0};
    return table;
}

inline constexpr std::array<LogClassRecord, kLogClassCount> kClassTable = class_table();

}  // namespace kestrel::logging
