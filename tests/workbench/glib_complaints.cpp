// GLib warnings are fatal for the test program: a source removed twice, a null object.
#include <glib.h>
#include <gmock/gmock.h>

namespace kestrel::testing {
namespace {

class FatalComplaints : public ::testing::Environment {
    void SetUp() override {
        g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL |
                                                           G_LOG_LEVEL_WARNING));
    }
};

// GoogleTest takes ownership.
const ::testing::Environment* const registered =
    ::testing::AddGlobalTestEnvironment(new FatalComplaints);

}  // namespace
}  // namespace kestrel::testing
