#include "tools/settings.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "base/terminal_text.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "program/translation.h"
#include "program/usage_error.h"
#include "tools/class_and_level_names.h"
#include "tools/console.h"

namespace kestrel::tools {
namespace {

using Json = nlohmann::ordered_json;

// Call this after the arguments have been checked: opening creates and repairs the file.
void open_settings() {
    if (ZynLogInitConfigOnly() == 1) return;
    const std::string path = GetConfigFilePath();
    throw std::runtime_error(
        path.empty() ? translate("cannot open the settings: there is no home directory")
                     : formatted(translate("cannot open the settings at %s"), path.c_str()));
}

// Checks the result of a ZynLogSet... function.
void expect_set(int result) {
    if (result == 1) return;
    throw std::runtime_error(formatted(translate("cannot change the settings at %s: the file was "
                                                 "cut short, or its disk is full"),
                                       GetConfigFilePath()));
}

std::uint32_t current_flags() {
    std::uint32_t flags = 0;
    ZynLogGetCurrentFlags(&flags);
    return flags;
}

// A path that fills its field has no terminator.
std::string output_path() {
    const char* const path = ZynLogGetOutputPath();
    return {path, strnlen(path, kLogOutputPathSize)};
}

std::string hexadecimal(std::uint32_t number) {
    std::array<char, 11> text{};
    std::snprintf(text.data(), text.size(), "0x%08x", number);
    return text.data();
}

std::uint32_t flag_bits(const std::string& text) {
    if (text == "thread-name") return kLogThreadNameFlag;
    const bool is_hexadecimal = text.starts_with("0x");
    const char* const begin = text.data() + (is_hexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    std::uint32_t bits = 0;
    const auto result = std::from_chars(begin, end, bits, is_hexadecimal ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != end) {
        throw UsageError(formatted(
            translate("'%s' is not a valid set of flags; valid are: 0 to 0xffffffff, thread-name"),
            text.c_str()));
    }
    return bits;
}

// The width counts characters of UTF-8 text.
std::string column(std::string text, std::size_t width) {
    const auto continued = static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U; }));
    text.resize(std::max(text.size() + 1, width + continued), ' ');
    return text;
}

std::string class_table() {
    std::string table = column(translate("CLASS"), 10) + column(translate("OWN LEVEL"), 11) +
                        column(translate("WORKING LEVEL"), 15) + translate("NAME") + "\n";
    for (std::uint32_t index = 0; index < kLogClassCount; ++index) {
        const std::uint32_t working = ZynLogGetWorkingLevel(index);
        table += column(class_name(index), 10) +
                 column(level_name(ZynLogGetCurrentLevel(index)), 11) +
                 column(working == kLogFailure ? "-" : level_name(working), 15) +
                 ZynLogGetClassDisplayName(index) + "\n";
    }
    return table;
}

std::string settings_table() {
    const std::array<std::pair<const char*, std::string>, 5> settings{{
        {translatable("flags"), hexadecimal(current_flags())},
        {translatable("output"), printable(output_path())},
        {translatable("rollover size"), std::to_string(ZynLogGetRolloverSize())},
        {translatable("rollover count"), std::to_string(ZynLogGetRolloverCount())},
        {translatable("session maximum"), std::to_string(ZynLogGetSessionMax())},
    }};
    std::string table;
    for (const auto& [name, value] : settings) {
        table += column(translate(name), 18) + value + "\n";
    }
    return table;
}

Json class_json(std::uint32_t index) {
    const std::uint32_t parent = ZynLogGetParent(index);
    const std::uint32_t working = ZynLogGetWorkingLevel(index);
    return {
        {"index", index},
        {"name", class_name(index)},
        {"display_name", ZynLogGetClassDisplayName(index)},
        {"parent", parent == kLogFailure ? Json() : Json(class_name(parent))},
        {"level", level_name(ZynLogGetCurrentLevel(index))},
        {"working_level", working == kLogFailure ? Json() : Json(level_name(working))},
    };
}

std::string settings_json() {
    Json settings = {
        {"config_file", GetConfigFilePath()},
        {"socket", GetSocketFilePath()},
        {"flags", current_flags()},
        {"output", output_path()},
        {"rollover_size", ZynLogGetRolloverSize()},
        {"rollover_count", ZynLogGetRolloverCount()},
        {"session_max", ZynLogGetSessionMax()},
        {"classes", Json::array()},
    };
    for (std::uint32_t index = 0; index < kLogClassCount; ++index) {
        settings["classes"].push_back(class_json(index));
    }
    // ASCII only, as the text may be shown on a terminal.
    return settings.dump(2, ' ', true, Json::error_handler_t::replace) + "\n";
}

}  // namespace

void show_settings(bool json) {
    open_settings();
    print(json ? settings_json() : class_table() + "\n" + settings_table());
}

void set_level(const std::string& class_name, const std::string& level_name) {
    const std::uint32_t log_class = class_by_name(class_name);
    const std::uint32_t level = level_by_name(level_name);
    open_settings();
    expect_set(ZynLogSetCurrentLevel(log_class, level));
}

void change_flags(const std::string& enable, const std::string& disable) {
    const std::uint32_t enabled_bits = flag_bits(enable);
    const std::uint32_t disabled_bits = flag_bits(disable);
    open_settings();
    expect_set(ZynLogEnableFlags(enabled_bits));
    expect_set(ZynLogDisableFlags(disabled_bits));
}

void set_output_path(const std::string& path) {
    if (!path.starts_with('/')) {
        throw UsageError(translate("the output path must begin with '/'"));
    }
    if (path.size() >= kLogOutputPathSize) {
        throw UsageError(
            formatted(translate("the output path is %zu bytes long; valid are 1 to %zu"),
                      path.size(), static_cast<std::size_t>(kLogOutputPathSize - 1)));
    }
    open_settings();
    expect_set(ZynLogSetOutputPath(path.c_str()));
}

void set_rollover(std::optional<int> size, std::optional<std::uint32_t> count) {
    open_settings();
    if (size) expect_set(ZynLogSetRolloverSize(*size));
    if (count) expect_set(ZynLogSetRolloverCount(*count));
}

void set_session_max(std::uint32_t sessions) {
    open_settings();
    expect_set(ZynLogSetSessionMax(sessions));
}

void reset_settings() {
    open_settings();
    std::uint32_t flags = 0;
    ZynLogGetDefaultFlags(&flags);
    expect_set(ZynLogEnableFlags(flags));
    expect_set(ZynLogDisableFlags(~flags));
    for (std::uint32_t index = 0; index < kLogClassCount; ++index) {
        expect_set(ZynLogSetCurrentLevel(index, ZynLogGetDefaultLevel(index)));
    }
    expect_set(ZynLogSetOutputPath(GetLogFilePath()));
    expect_set(ZynLogSetRolloverSize(kLogDefaultRolloverSize));
    expect_set(ZynLogSetRolloverCount(kLogDefaultRolloverCount));
    expect_set(ZynLogSetSessionMax(kLogDefaultSessions));
}

}  // namespace kestrel::tools
