#include "workbench/window/sandbox.h"

#include <glib.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace kestrel {
namespace {

// The sandbox mounts its own directories over these.
constexpr std::array<std::string_view, 5> kHidden = {"/dev/", "/proc/", "/sys/", "/var/run/",
                                                     "/var/tmp/"};

// The socket of the sandbox's session bus proxy, in the home directory.
constexpr std::string_view kBusSocket = "/.cache/webkitgtk/bus-proxy-XXXXXX";

bool is_hidden(const std::string& path) {
    return std::ranges::any_of(kHidden,
                               [&](std::string_view start) { return path.starts_with(start); });
}

// Whether users can create the namespaces that the sandbox needs. In containers they often cannot.
bool can_create_namespaces() {
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

}  // namespace

std::string sandbox_obstacle(const std::string& home, const std::vector<std::string>& paths) {
    const auto hidden = std::ranges::find_if(paths, is_hidden);
    if (hidden != paths.end()) return "it would hide " + *hidden;
    if (home.size() + kBusSocket.size() >= sizeof sockaddr_un::sun_path) {
        return "its socket would have too long a path in " + home;
    }
    return can_create_namespaces() ? "" : "this machine does not let us make one";
}

}  // namespace kestrel
