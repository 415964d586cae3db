#pragma once

#include <array>
#include <string>

namespace kestrel::testing {

// What makes a directory an install root.
inline constexpr std::array kClientFiles = {"KeyWardenDaemon", "ServiceLedger", "PrimaryKeyWarden",
                                            "util/catalook"};

// Creates an empty file, and the directories on its way.
void create_file(const std::string& path);

// Makes the directory a complete installation, and a complete one incomplete.
void install_client(const std::string& directory);
void break_client(const std::string& directory);

}  // namespace kestrel::testing
