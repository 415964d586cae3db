// The machine as a test of the logging client sees it: an empty HOME of its own, and, where the
// kernel allows a private mount namespace, an empty /var/log of its own.
//
// The client settles its files once per process, so each test case runs in a process of its own.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace kestrel::testing {

// The temporary home directory that HOME names.
const std::string& home();

// Its ".QUOClient", which exists.
std::string client_directory();

// Where the shared record lies, and its bytes.
std::string record_path();
std::string record_bytes();

// Puts a new, empty file system over a directory that only this process sees. False when the
// kernel refuses.
bool cover(const std::string& directory);

// Whether /var/log is private and empty.
bool has_private_machine();

void write_file(const std::string& path, std::string_view content);

// The open descriptors of this process.
std::set<int> open_descriptors();

}  // namespace kestrel::testing
