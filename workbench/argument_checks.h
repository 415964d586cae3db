// What people name on the command line or in the window, checked before anything depends on it.
// Each throws UsageError with a sentence that begins with `option`.
#pragma once

#include <string>

#include "program/usage_error.h"

namespace kestrel {

// The absolute path of a directory that exists and whose name is UTF-8.
std::string existing_directory(const std::string& option, const std::string& path);

// The absolute path of a file that exists.
std::string existing_file(const std::string& option, const std::string& path);

// The absolute path of a file that can be written, or made.
std::string future_file(const std::string& option, const std::string& path);

// The URI of an existing file, or the valid URL given in its place.
std::string page_address(const std::string& option, const std::string& page);

// The whole of a file, which must be UTF-8 without U+0000: a message would break off there.
std::string text_of_file(const std::string& option, const std::string& path);

}  // namespace kestrel
