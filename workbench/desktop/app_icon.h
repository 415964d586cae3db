#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <string>

namespace kestrel {

// Hundreds of icons must fit into one answer to the page.
inline constexpr std::size_t kMaxIconBytes = 100'000;

// The theme's icon of an application (InstalledApp::icon) at about `size` pixels, as a data URI of
// its file, which is not decoded. "" if the icon does not exist, is longer than kMaxIconBytes, or
// has a format that browsers do not show.
std::string icon_data_uri(GtkIconTheme* theme, const std::string& icon, int size);

}  // namespace kestrel
