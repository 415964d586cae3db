// The commands that show and change the shared settings. They check all arguments first: after a
// UsageError nothing has changed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrel::tools {

// All settings, as tables or as JSON.
void show_settings(bool json);

void set_level(const std::string& class_name, const std::string& level_name);

// Flags are numbers such as 0x1000, or the name "thread-name".
void change_flags(const std::string& enable, const std::string& disable);

void set_output_path(const std::string& path);
void set_rollover(std::optional<int> size, std::optional<std::uint32_t> count);
void set_session_max(std::uint32_t sessions);
void reset_settings();

}  // namespace kestrel::tools
