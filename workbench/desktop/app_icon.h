#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <string>

namespace kestrel {

// Hundreds of icons have to fit into one answer to the page.
inline constexpr std::size_t kMaxIconBytes = 100'000;

// The icon of an application (InstalledApp::icon), as the theme has it at about `size` pixels: a
// data URI of its file, which is not decoded. "" if there is no such icon on this machine, if it is
// longer than kMaxIconBytes, or of a kind that browsers do not show.
std::string icon_data_uri(GtkIconTheme* theme, const std::string& icon, int size);

}  // namespace kestrel
