#pragma once

#include <functional>
#include <string>

#include "workbench/desktop/installed_apps.h"
#include "workbench/desktop/store_database.h"
#include "workbench/desktop/user_interface.h"
#include "workbench/desktop/web_requests.h"

namespace kestrel {

// The services that actions use. All must outlive the session.
struct Services {
    std::string page_uri;  // of the shown page
    StoreDatabase& database;
    InstalledApps& apps;
    WebRequests& requests;
    UserInterface& user_interface;
    // The data URI of an application's icon, or "".
    std::function<std::string(const std::string& icon)> icon_uri;
};

}  // namespace kestrel
