// Checks of file names and addresses that the user gives on the command line or in the window. Each
// throws UsageError with a text that begins with `option`.
#pragma once

#include <string>

#include "program/usage_error.h"

namespace kestrel {

// The absolute path of a directory that exists and whose name is UTF-8.
std::string existing_directory(const std::string& option, const std::string& path);

// The absolute path of a file that exists.
std::string existing_file(const std::string& option, const std::string& path);

// The absolute path of a file that can be created or overwritten.
std::string future_file(const std::string& option, const std::string& path);

// The URI of an existing file, or the given URL if it is valid.
std::string page_address(const std::string& option, const std::string& page);

// The content of a file, which must be UTF-8 without U+0000: a NUL would end it in a message.
std::string text_of_file(const std::string& option, const std::string& path);

}  // namespace kestrel
