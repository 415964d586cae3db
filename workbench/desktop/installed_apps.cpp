#include "workbench/desktop/installed_apps.h"

#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace kestrel {
namespace {

using AppInfo = ObjectHandle<GAppInfo>;

std::string icon_text(GAppInfo* app) {
    GIcon* const icon = g_app_info_get_icon(app);
    const GlibText text(icon == nullptr ? nullptr : g_icon_to_string(icon));
    return text_or_empty(text.get());
}

// The listed application with this id, or null.
AppInfo shown_app(const std::string& id) {
    AppInfo app(reinterpret_cast<GAppInfo*>(g_desktop_app_info_new(id.c_str())));
    if (app && g_app_info_should_show(app.get()) == FALSE) app.reset();
    return app;
}

bool is_before(const InstalledApp& left, const InstalledApp& right) {
    const int order = g_utf8_collate(left.name.c_str(), right.name.c_str());
    return order != 0 ? order < 0 : left.id < right.id;
}

InstalledApp described(GAppInfo* app) {
    return {.id = text_or_empty(g_app_info_get_id(app)),
            .name = text_or_empty(g_app_info_get_name(app)),
            .description = text_or_empty(g_app_info_get_description(app)),
            .icon = icon_text(app)};
}

}  // namespace

// A pending launch.
struct InstalledApps::Launch {
    ObjectHandle<GCancellable> cancellable;
    ObjectHandle<GAppLaunchContext> context{g_app_launch_context_new()};
    Done done;
    std::string error{};

    // Runs in the main context. Takes ownership of the launch.
    static gboolean report(gpointer data) {
        const std::unique_ptr<Launch> launch(static_cast<Launch*>(data));
        if (g_cancellable_is_cancelled(launch->cancellable.get()) == FALSE) {
            launch->done(launch->error);
        }
        return G_SOURCE_REMOVE;
    }
    static void report(gpointer data, GError* failed) {
        const GlibError owner(failed);
        if (owner) static_cast<Launch*>(data)->error = owner->message;
        report(data);
    }
    static void on_launched(GObject* app, GAsyncResult* result, gpointer data) {
        GError* failed = nullptr;
        g_app_info_launch_uris_finish(reinterpret_cast<GAppInfo*>(app), result, &failed);
        report(data, failed);
    }
    static void on_opened(GObject* /*none*/, GAsyncResult* result, gpointer data) {
        GError* failed = nullptr;
        g_app_info_launch_default_for_uri_finish(result, &failed);
        report(data, failed);
    }
};

InstalledApps::InstalledApps(std::string home)
    : home_(std::move(home)), cancellable_(g_cancellable_new()) {}

InstalledApps::~InstalledApps() { g_cancellable_cancel(cancellable_.get()); }

std::vector<InstalledApp> InstalledApps::list() const {
    std::vector<InstalledApp> apps;
    GList* const all = g_app_info_get_all();
    for (const GList* each = all; each != nullptr; each = each->next) {
        auto* const app = static_cast<GAppInfo*>(each->data);
        if (g_app_info_should_show(app) != FALSE) apps.push_back(described(app));
    }
    g_list_free_full(all, g_object_unref);
    std::ranges::sort(apps, is_before);
    return apps;
}

std::optional<InstalledApp> InstalledApps::find(const std::string& id) const {
    const AppInfo app = shown_app(id);
    return app ? std::optional(described(app.get())) : std::nullopt;
}

std::unique_ptr<InstalledApps::Launch> InstalledApps::prepare(Done done) const {
    auto* const cancellable = static_cast<GCancellable*>(g_object_ref(cancellable_.get()));
    auto launch = std::make_unique<Launch>(
        Launch{.cancellable = ObjectHandle<GCancellable>(cancellable), .done = std::move(done)});
    g_app_launch_context_setenv(launch->context.get(), "HOME", home_.c_str());
    return launch;
}

void InstalledApps::launch(const std::string& id, Done done) {
    std::unique_ptr<Launch> launch = prepare(std::move(done));
    GAppLaunchContext* const context = launch->context.get();
    if (const AppInfo app = shown_app(id)) {
        g_app_info_launch_uris_async(app.get(), nullptr, context, cancellable_.get(),
                                     Launch::on_launched, launch.release());
    } else {
        launch->error = "no application is installed as " + id;
        g_idle_add(Launch::report, launch.release());
    }
}

void InstalledApps::open(const std::string& uri, Done done) {
    std::unique_ptr<Launch> launch = prepare(std::move(done));
    GAppLaunchContext* const context = launch->context.get();
    g_app_info_launch_default_for_uri_async(uri.c_str(), context, cancellable_.get(),
                                            Launch::on_opened, launch.release());
}

}  // namespace kestrel
