#pragma once

#include <cstddef>
#include <string>

namespace kestrel {

struct ImageSource {
    std::string bytes;
    std::string error;  // why there are none, or ""
};

// The bytes behind a data URI, or behind the file URI of a regular file on this machine. More than
// `limit` are an error. Anything else, and so every network, is refused.
ImageSource read_image_source(const std::string& uri, std::size_t limit);

}  // namespace kestrel
