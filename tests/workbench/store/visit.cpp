#include "tests/workbench/store/visit.h"

#include <gmock/gmock.h>

#include <exception>
#include <sstream>

#include "workbench/workbench.h"

namespace kestrel::testing {
namespace {

using Act = std::function<void(Person&)>;

gboolean act_as_person(void* act) {
    Person person;
    try {
        (*static_cast<const Act*>(act))(person);
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    person.close_window();
    return G_SOURCE_REMOVE;
}

}  // namespace

std::string visit(const Options& options, const Act& act) {
    const PrivateHome home(g_get_home_dir());
    std::ostringstream lines;
    Transcript written(lines);
    Workbench workbench(options, home, written);
    g_idle_add(act_as_person, const_cast<Act*>(&act));
    EXPECT_EQ(workbench.run(), 0);
    return lines.str();
}

}  // namespace kestrel::testing
