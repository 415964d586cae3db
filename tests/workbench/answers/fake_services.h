#pragma once

#include <string>

#include "tests/support/temporary_directory.h"
#include "tests/workbench/desktop/fake_user_interface.h"
#include "workbench/answers/services.h"

namespace kestrel::testing {

// Real services, except for the user interface, with a page and a database in a temporary
// directory.
struct FakeServices {
    TemporaryDirectory directory;
    StoreDatabase database{directory.path() + "/store.db"};
    InstalledApps apps{directory.path()};
    WebRequests requests;
    FakeUserInterface user_interface;
    Services services{"file://" + directory.path() + "/page.html",
                      database,
                      apps,
                      requests,
                      user_interface,
                      [](const std::string&) { return std::string("data:,icon"); }};

    // Makes reading items fail.
    void break_database() const {
        SqliteDatabase(directory.path() + "/store.db").run("DROP TABLE item");
    }
};

}  // namespace kestrel::testing
