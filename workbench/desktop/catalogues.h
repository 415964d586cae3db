#pragma once

#include <string>
#include <vector>

namespace kestrel {

// The locales for which the client has a catalogue, <install
// root>/nls/LOCALE/LC_MESSAGES/kestrel.mo, by name. None if nothing can be read there.
std::vector<std::string> locales_with_catalogue(const std::string& install_root);

}  // namespace kestrel
