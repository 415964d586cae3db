#include "workbench/desktop/account.h"

#include <glib.h>

#include <string_view>

namespace kestrel {

Account local_account() {
    const std::string_view name = g_get_real_name();
    const bool is_named = !name.empty() && name != "Unknown";
    return {"local", std::string(is_named ? name : g_get_user_name()), g_get_user_name()};
}

}  // namespace kestrel
