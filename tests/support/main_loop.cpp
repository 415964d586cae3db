#include "tests/support/main_loop.h"

#include <glib.h>

namespace kestrel::testing {
namespace {

constexpr gint64 kPatience = 90 * G_TIME_SPAN_SECOND;

// Some conditions change without an event of this process: they are looked at this often.
constexpr guint kTickMilliseconds = 20;

}  // namespace

bool run_main_loop_until(const std::function<bool()>& condition) {
    const gint64 deadline = g_get_monotonic_time() + kPatience;
    const guint tick = g_timeout_add(
        kTickMilliseconds, [](void*) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    while (!condition() && g_get_monotonic_time() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_source_remove(tick);
    return condition();
}

void run_main_loop_until_idle() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

}  // namespace kestrel::testing
