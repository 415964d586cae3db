#pragma once

#include <string>
#include <vector>

namespace kestrel {

// The locales for which the client has a catalogue,
// <install root>/nls/LOCALE/LC_MESSAGES/kestrel.mo, sorted by name. Empty if the directory cannot
// be read.
std::vector<std::string> locales_with_catalogue(const std::string& install_root);

}  // namespace kestrel
