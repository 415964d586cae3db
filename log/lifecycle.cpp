#include "log/lifecycle.h"

#include <syslog.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "base/errno_guard.h"
#include "log/daemon_link.h"
#include "log/daemon_protocol.h"
#include "log/shared_config.h"
#include "log/syslog_fallback.h"
#include "log/zynlog.h"

using kestrel::ErrnoGuard;
using kestrel::logging::daemon_connected;
using kestrel::logging::initialised;
using kestrel::logging::syslog_open;

constinit std::atomic<bool> kestrel::logging::initialised = false;

namespace {

// The process's name for the daemon and for syslog, which keeps a pointer to it.
constinit std::array<char, kestrel::logging::kIdentSize> ident{};

void set_ident() {
    ident.fill('\0');
    std::snprintf(ident.data(), ident.size(), "veltrane-%s", program_invocation_short_name);
}

bool is_config_mapped() { return kestrel::logging::config() != nullptr; }

}  // namespace

int ZynLogInit() {
    const ErrnoGuard errno_guard;
    if (!initialised) {
        set_ident();
        kestrel::logging::map_shared_config();
        kestrel::logging::open_syslog(ident.data());
        kestrel::logging::connect_daemon(ident.data());
        initialised = true;
    }
    if (!daemon_connected) syslog(LOG_ERR, "Failed to connect with logd.");
    if (syslog_open) return 1;
    return daemon_connected && is_config_mapped() ? 1 : 0;
}

int ZynLogInitConfigOnly() {
    const ErrnoGuard errno_guard;
    if (!initialised) {
        kestrel::logging::map_shared_config();
        initialised = true;
    }
    return is_config_mapped() ? 1 : 0;
}

void ZynLogShutdown() {
    const ErrnoGuard errno_guard;
    if (!initialised) return;
    kestrel::logging::disconnect_daemon();
    kestrel::logging::close_syslog();
    kestrel::logging::unmap_shared_config();
    initialised = false;
}
