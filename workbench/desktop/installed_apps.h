#pragma once

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/desktop/glib_handles.h"

namespace kestrel {

struct InstalledApp {
    std::string id;  // of its desktop entry, such as "org.example.Editor.desktop"
    std::string name;
    std::string description;  // "" if it has none
    std::string icon;         // as GIcon serialises itself: a path, a name, …; "" if it has none
};

// The applications that this machine's desktop entries show to the user. GLib looks for them where
// HOME and the XDG variables point when the process first asks for one of the user's directories:
// ask for g_get_user_data_dir before HOME is changed.
class InstalledApps {
  public:
    // Gets "" when an application was started, otherwise why not. That it has come up is more than
    // anybody knows.
    using Done = std::function<void(std::string error)>;

    // `home` is the user's own home directory, in which the launched are to live.
    explicit InstalledApps(std::string home);

    // Nothing is called any more for launches under way, which may yet succeed.
    ~InstalledApps();
    InstalledApps(const InstalledApps&) = delete;
    InstalledApps& operator=(const InstalledApps&) = delete;

    // In the order of their names, as the user's language sorts them.
    std::vector<InstalledApp> list() const;

    // The one listed under this id, if there is one.
    std::optional<InstalledApp> find(const std::string& id) const;

    // Launches one of those listed. Here and below, `done` is called once, from the default main
    // context and never inside the call; it may destroy this object.
    void launch(const std::string& id, Done done);

    // Opens a file or an address with the application that the user has chosen for its kind.
    void open(const std::string& uri, Done done);

  private:
    struct Launch;

    std::unique_ptr<Launch> prepare(Done done) const;

    std::string home_;
    ObjectHandle<GCancellable> cancellable_;
};

}  // namespace kestrel
