#include "workbench/window/sandbox.h"

#include <glib.h>

#include <array>

namespace kestrel {

bool can_create_sandbox() {
    std::array arguments = {"bwrap", "--ro-bind", "/", "/", "--unshare-all", "true"};
    std::array<char*, arguments.size() + 1> argv{};
    for (std::size_t i = 0; i < arguments.size(); ++i) argv[i] = const_cast<char*>(arguments[i]);
    int status = 0;
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL |
                                                G_SPAWN_STDERR_TO_DEV_NULL);
    return g_spawn_sync(nullptr, argv.data(), nullptr, flags, nullptr, nullptr, nullptr, nullptr,
                        &status, nullptr) != FALSE &&
           g_spawn_check_wait_status(status, nullptr) != FALSE;
}

}  // namespace kestrel
