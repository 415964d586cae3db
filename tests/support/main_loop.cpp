#include "tests/support/main_loop.h"

#include <glib.h>

namespace kestrel::testing {

bool run_main_loop_until(const std::function<bool()>& condition) {
    bool expired = false;
    const guint timer = g_timeout_add_seconds(
        10,
        [](void* flag) -> gboolean {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_CONTINUE;
        },
        &expired);
    while (!condition() && !expired) g_main_context_iteration(nullptr, TRUE);
    g_source_remove(timer);
    return condition();
}

void run_main_loop_until_idle() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

}  // namespace kestrel::testing
