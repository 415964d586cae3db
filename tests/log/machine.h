// The environment of a test of the logging client: a temporary empty HOME and, if the kernel allows
// a private mount namespace, an empty /var/log.
//
// The client caches its paths, so each test case runs in a separate process.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace kestrel::testing {

// The temporary home directory that HOME names.
const std::string& home();

// Its ".QUOClient", which exists.
std::string client_directory();

// The path of the settings file, and its content.
std::string record_path();
std::string record_bytes();

// Mounts an empty file system over a directory, visible only to this process. False if the kernel
// refuses.
bool cover(const std::string& directory);

// Whether /var/log is private and empty.
bool has_private_machine();

void write_file(const std::string& path, std::string_view content);

// The open descriptors of this process.
std::set<int> open_descriptors();

}  // namespace kestrel::testing
