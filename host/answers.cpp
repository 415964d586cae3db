#include "host/answers.h"

#include <gio/gio.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>

#include "host/script_literal.h"

namespace kestrel {
namespace {

struct ObjectUnref {
    void operator()(GFile* file) const { g_object_unref(file); }
};
using File = std::unique_ptr<GFile, ObjectUnref>;

std::string subscriptions_literal(const StoreState& state) {
    std::vector<std::string> ids;
    for (const std::string& id : state.subscriptions()) ids.push_back(script_string(id));
    return script_array(ids);
}

std::string display_name() {
    const std::string_view name = g_get_real_name();
    return std::string(name.empty() || name == "Unknown" ? g_get_user_name() : name);
}

// The URI of an existing file in the page's directory or below, or "". Only local files are looked
// for: asking for any other would wait for a network.
std::string uri_beside(const std::string& page_uri, const std::string& name) {
    const File page(g_file_new_for_uri(page_uri.c_str()));
    const File directory(g_file_get_parent(page.get()));
    if (!directory || g_file_is_native(directory.get()) == FALSE) return "";
    const File file(g_file_resolve_relative_path(directory.get(), name.c_str()));
    if (g_file_has_prefix(file.get(), directory.get()) == FALSE ||
        g_file_query_exists(file.get(), nullptr) == FALSE) {
        return "";
    }
    const std::unique_ptr<char, decltype(&g_free)> uri(g_file_get_uri(file.get()), g_free);
    return uri.get();
}

// 0 for what is no position.
std::size_t position_of(const std::string& text) {
    std::size_t position = 0;
    std::from_chars(text.data(), text.data() + text.size(), position);
    return position;
}

std::string color_component(int value) { return std::to_string(std::clamp(value, 0, 255)); }

}  // namespace

std::optional<Answer> answer_capabilities(StoreState& /*state*/, const Request& request) {
    // The extension sends the second argument first.
    return call_back(request.text(0), script_object({{"host", script_string("kestrel-host")},
                                                     {"version", script_string(HOST_VERSION)},
                                                     {"ajax", script_string("echo")},
                                                     {"recolorImage", script_string("square")}}));
}

std::optional<Answer> answer_accounts(StoreState& /*state*/, const Request& request) {
    const std::array accounts = {script_object({{"id", script_string("local")},
                                                {"name", script_string(display_name())},
                                                {"user", script_string(g_get_user_name())}})};
    return call_back(request.text(0), script_array(accounts));
}

std::optional<Answer> answer_store_details(StoreState& state, const Request& request) {
    return call_back(request.text(0), script_object({{"name", script_string("Sample store")},
                                                     {"url", script_string(state.page_uri())}}));
}

std::optional<Answer> answer_installed_apps(StoreState& state, const Request& request) {
    return call_back(request.text(0), subscriptions_literal(state));
}

std::optional<Answer> answer_ajax(StoreState& /*state*/, const Request& request) {
    return call_back(request.text(5), AjaxResult{
                                          .id = request.text(4),
                                          .status = "200",
                                          .status_text = "OK",
                                          .headers = "Content-Type: application/json",
                                          .body = script_object({
                                              {"url", script_string(request.text(0))},
                                              {"method", script_string(request.text(1))},
                                              {"headers", script_string(request.text(2))},
                                              {"body", script_string(request.text(3))},
                                          }),
                                      });
}

std::optional<Answer> answer_subscribe(StoreState& state, const Request& request) {
    state.subscribe(request.text(0));
    return call_back(request.text(1), subscriptions_literal(state));
}

std::optional<Answer> answer_unsubscribe(StoreState& state, const Request& request) {
    state.unsubscribe(request.text(0));
    return call_back(request.text(1), subscriptions_literal(state));
}

std::optional<Answer> answer_move(StoreState& state, const Request& request) {
    state.move(request.text(0), position_of(request.text(1)));
    return std::nullopt;
}

std::optional<Answer> answer_launch(StoreState& /*state*/, const Request& request) {
    return call_back(request.text(1), script_boolean(!request.text(0).empty()));
}

std::optional<Answer> answer_file_uri(StoreState& state, const Request& request) {
    return call_back(request.text(1), script_string(uri_beside(state.page_uri(), request.text(0))));
}

std::optional<Answer> answer_item(StoreState& state, const Request& request) {
    const std::string* value = state.item(request.text(0));
    return call_back(request.text(1), value == nullptr ? "null" : script_string(*value));
}

std::optional<Answer> answer_set_item(StoreState& state, const Request& request) {
    state.set_item(request.text(0), request.text(1));
    return call_back(request.text(2), script_boolean(true));
}

std::optional<Answer> answer_recolored_image(StoreState& /*state*/, const Request& request) {
    const std::string color = color_component(request.number(0)) + "," +
                              color_component(request.number(1)) + "," +
                              color_component(request.number(2));
    return call_back(request.text(1),
                     script_string("data:image/svg+xml,"
                                   "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 1 1'>"
                                   "<rect width='1' height='1' fill='rgb(" +
                                   color + ")'/></svg>"));
}

std::optional<Answer> answer_error_dialog(StoreState& /*state*/, const Request& request) {
    return call_back(request.text(4), script_string(request.text(3)));
}

std::optional<Answer> answer_user_display_name(StoreState& /*state*/, const Request& request) {
    return call_back(request.text(0), script_string(display_name()));
}

}  // namespace kestrel
