#include "workbench/desktop/app_icon.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "workbench/desktop/glib_handles.h"
#include "workbench/desktop/image_source.h"

namespace kestrel {
namespace {

struct Kind {
    std::string_view suffix;
    std::string_view type;
};

constexpr std::array kKinds = {
    Kind{".gif", "image/gif"},   Kind{".ico", "image/x-icon"}, Kind{".jpeg", "image/jpeg"},
    Kind{".jpg", "image/jpeg"},  Kind{".png", "image/png"},    Kind{".svg", "image/svg+xml"},
    Kind{".webp", "image/webp"},
};

// "" if the theme has no such icon.
std::string file_of(GtkIconTheme* theme, const std::string& icon, int size) {
    const ObjectHandle<GIcon> described(g_icon_new_for_string(icon.c_str(), nullptr));
    if (!described) return "";
    const ObjectHandle<GtkIconInfo> found(gtk_icon_theme_lookup_by_gicon(
        theme, described.get(), size, static_cast<GtkIconLookupFlags>(0)));
    return found ? text_or_empty(gtk_icon_info_get_filename(found.get())) : "";
}

}  // namespace

std::string icon_data_uri(GtkIconTheme* theme, const std::string& icon, int size) {
    const std::string file = file_of(theme, icon, size);
    const auto* const kind =
        std::ranges::find_if(kKinds, [&](const Kind& each) { return file.ends_with(each.suffix); });
    const GlibText uri(g_filename_to_uri(file.c_str(), nullptr, nullptr));
    if (kind == kKinds.end() || !uri) return "";

    const std::string bytes = read_image_source(uri.get(), kMaxIconBytes).bytes;
    if (bytes.empty()) return "";
    const GlibText base64(
        g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()));
    return "data:" + std::string(kind->type) + ";base64," + base64.get();
}

}  // namespace kestrel
