// Actions that start or show something on the user's desktop.
#include <array>
#include <utility>

#include "log/zynlog.h"
#include "program/translation.h"
#include "workbench/answers/actions.h"
#include "workbench/desktop/local_files.h"

namespace kestrel {
namespace {

// One message carries all icons and the rest of the answer.
constexpr std::size_t kMaxIconsTogether = 3'000'000;

ScriptValue start_result(const std::string& problem) {
    return {{"started", problem.empty()}, {"problem", problem}};
}

// Calls `start`, which reports a problem or "", if the user agrees.
void ask_and_start(Services& services, const Question& question, const Reply& reply,
                   std::function<void(std::function<void(const std::string&)>)> start) {
    services.user_interface.ask(
        question, [&services, reply, start = std::move(start)](bool agrees) {
            const auto answer = [&services, reply](const std::string& problem) {
                if (!problem.empty()) services.user_interface.show_notice(problem);
                reply(start_result(problem));
            };
            if (agrees) {
                start(answer);
            } else {
                reply(start_result("the user declined"));
            }
        });
}

}  // namespace

void launch_app(Services& services, const Request& request, const Reply& reply) {
    const std::string& id = request.text(0);
    const auto app = services.apps.find(id);
    if (!app) {
        reply(start_result("there is no application " + id + " on this computer"));
        return;
    }
    ask_and_start(services,
                  {formatted(translate("Start %s?"), app->name.c_str()), id, translate("Start")},
                  reply, [&services, id](auto done) { services.apps.launch(id, std::move(done)); });
}

void launch_resource(Services& services, const Request& request, const Reply& reply) {
    const std::string uri = uri_beside(services.page_uri, request.text(0));
    if (uri.empty()) {
        reply(start_result("there is no file " + request.text(0) + " beside the page"));
        return;
    }
    ask_and_start(services, {translate("Open this file?"), uri, translate("Open")}, reply,
                  [&services, uri](auto done) { services.apps.open(uri, std::move(done)); });
}

void open_url(Services& services, const Request& request, const Reply& reply) {
    const std::string& uri = request.text(0);
    ask_and_start(services, {translate("Open this address?"), uri, translate("Open")}, reply,
                  [&services, uri](auto done) { services.apps.open(uri, std::move(done)); });
}

void get_installed_apps(Services& services, const Request& /*request*/, const Reply& reply) {
    ScriptValue applications = ScriptValue::array();
    std::size_t icon_bytes = 0;
    for (const InstalledApp& app : services.apps.list()) {
        std::string icon = services.icon_uri(app.icon);
        if (icon_bytes + icon.size() > kMaxIconsTogether) icon.clear();
        icon_bytes += icon.size();
        applications.push_back(
            {{"id", app.id}, {"name", app.name}, {"summary", app.description}, {"icon", icon}});
    }
    reply(ScriptValue{{"applications", std::move(applications)},
                      {"subscriptions", services.database.subscriptions()}});
}

void report_error(Services& services, const Request& request, const Reply& reply) {
    const std::string& button = request.text(3);
    services.user_interface.report_error(
        {request.text(0), request.text(1), request.text(2), button},
        [reply, button](bool is_pressed) { reply(is_pressed ? button : ""); });
}

void show_settings_menu(Services& services, const Request& request, const Reply& /*reply*/) {
    services.user_interface.show_settings_menu(
        {request.number(0), request.number(1), request.number(2), request.number(3)});
}

void show_accounts(Services& services, const Request& /*request*/, const Reply& /*reply*/) {
    services.user_interface.show_accounts(std::array{local_account()});
}

void open_default_store(Services& services, const Request& /*request*/, const Reply& /*reply*/) {
    services.user_interface.open_default_store();
}

void write_trace_message(Services& services, const Request& request, const Reply& /*reply*/) {
    services.user_interface.show_notice("the page says: " + request.text(0));
    // Regardless of the levels: the page's author asked for this line.
    __ZynTrace(kLogKestrel, kAlwaysOn, "", "", 0, "%s", request.text(0).c_str());
}

}  // namespace kestrel
