#include "workbench/window/sandbox.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace kestrel {

bool can_make_sandbox() {
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

bool sandbox_hides(const std::string& path) {
    constexpr std::array<std::string_view, 5> kOwn = {"/dev/", "/proc/", "/sys/", "/var/run/",
                                                      "/var/tmp/"};
    return std::ranges::any_of(kOwn, [&](std::string_view own) { return path.starts_with(own); });
}

}  // namespace kestrel
