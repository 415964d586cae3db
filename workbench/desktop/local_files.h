#pragma once

#include <string>

namespace kestrel {

// The URI of an existing file in the page's directory or below, or "". Only local files are looked
// for: asking for any other would wait for a network.
std::string uri_beside(const std::string& page_uri, const std::string& name);

}  // namespace kestrel
