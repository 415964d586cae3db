#pragma once

#include <glib.h>

#include <string>
#include <string_view>

#include "workbench/desktop/glib_handles.h"

namespace kestrel {

// The text with each invalid byte and NUL replaced by U+FFFD.
inline std::string valid_utf8(std::string_view text) {
    if (text.empty()) return "";
    const GlibText valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
    return valid.get();
}

}  // namespace kestrel
