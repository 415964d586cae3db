#include "tests/support/main_loop.h"

#include <glib.h>

#include "tests/support/wait_until.h"

namespace kestrel::testing {
namespace {

// Conditions outside this process change without an event: they are checked at this interval.
constexpr guint kTickMilliseconds = 20;

}  // namespace

bool run_main_loop_until(const std::function<bool()>& condition) {
    const guint tick = g_timeout_add(
        kTickMilliseconds, [](void*) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    const bool holds = wait_until(condition, [] { g_main_context_iteration(nullptr, TRUE); });
    g_source_remove(tick);
    return holds;
}

void run_main_loop_until_idle() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

}  // namespace kestrel::testing
