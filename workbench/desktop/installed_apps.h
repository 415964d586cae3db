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
    std::string icon;         // a serialised GIcon: a path, a name, …; "" if it has none
};

// The applications with visible desktop entries. GLib reads HOME and the XDG variables when the
// process first asks for a user directory: call g_get_user_data_dir before HOME is changed.
class InstalledApps {
  public:
    // `error` is "" if the application was started, which does not imply that it came up.
    using Done = std::function<void(std::string error)>;

    // `home` is HOME of the launched applications: the user's own home directory.
    explicit InstalledApps(std::string home);

    // Callbacks of pending launches are not called any more; the launches may still succeed.
    ~InstalledApps();
    InstalledApps(const InstalledApps&) = delete;
    InstalledApps& operator=(const InstalledApps&) = delete;

    // Sorted by name in the user's locale.
    std::vector<InstalledApp> list() const;

    // The listed application with this id, if any.
    std::optional<InstalledApp> find(const std::string& id) const;

    // Launches a listed application. Here and below, `done` is called once, from the default main
    // context, after the call has returned; it may destroy this object.
    void launch(const std::string& id, Done done);

    // Opens a file or an address with its default application.
    void open(const std::string& uri, Done done);

  private:
    struct Launch;

    std::unique_ptr<Launch> prepare(Done done) const;

    std::string home_;
    ObjectHandle<GCancellable> cancellable_;
};

}  // namespace kestrel
