#pragma once

#include <cstddef>
#include <string>

namespace kestrel {

struct ImageSource {
    std::string bytes;
    std::string error;  // "" on success
};

// The bytes of a data URI, or of a regular file on this machine that a file URI names; at most
// `limit` bytes. All other URIs are refused, so no network is used.
ImageSource read_image_source(const std::string& uri, std::size_t limit);

}  // namespace kestrel
