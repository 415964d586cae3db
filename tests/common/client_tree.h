#pragma once

#include <array>
#include <string>

namespace kestrel::testing {

// The files that make a directory an install root.
inline constexpr std::array kClientFiles = {"KeyWardenDaemon", "ServiceLedger", "PrimaryKeyWarden",
                                            "util/catalook"};

// Creates an empty file and its parent directories.
void create_file(const std::string& path);

// Creates a complete installation; makes a complete one incomplete.
void install_client(const std::string& directory);
void break_client(const std::string& directory);

}  // namespace kestrel::testing
