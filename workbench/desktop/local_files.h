#pragma once

#include <string>

namespace kestrel {

// The URI of an existing file in the page's directory or below, or "". Only local files are
// checked, as others could block on a network.
std::string uri_beside(const std::string& page_uri, const std::string& name);

}  // namespace kestrel
