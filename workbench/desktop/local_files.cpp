#include "workbench/desktop/local_files.h"

#include <gio/gio.h>

#include "workbench/desktop/glib_handles.h"

namespace kestrel {

std::string uri_beside(const std::string& page_uri, const std::string& name) {
    const ObjectHandle<GFile> page(g_file_new_for_uri(page_uri.c_str()));
    const ObjectHandle<GFile> directory(g_file_get_parent(page.get()));
    if (!directory || g_file_is_native(directory.get()) == FALSE) return "";
    const ObjectHandle<GFile> file(g_file_resolve_relative_path(directory.get(), name.c_str()));
    if (g_file_has_prefix(file.get(), directory.get()) == FALSE ||
        g_file_query_exists(file.get(), nullptr) == FALSE) {
        return "";
    }
    const GlibText uri(g_file_get_uri(file.get()));
    return uri.get();
}

}  // namespace kestrel
