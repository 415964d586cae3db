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
    wait_until(condition, [] { g_main_context_iteration(nullptr, TRUE); });
    g_source_remove(tick);
    // Tests of the sample store need the second check: its round trip to the web process lets the
    // page handle the events of a click before the next step.
    return condition();
}

void run_main_loop_until_idle() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

}  // namespace kestrel::testing
