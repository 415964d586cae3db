// The messages that page functions send, and the actions that handle them.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "ipc/protocol.h"
#include "workbench/answers/actions.h"

namespace kestrel {

// Instead of an index: the command has no callback.
inline constexpr int kNoCallback = -1;

struct Command {
    // A name that is not a message type does not compile.
    consteval Command(std::string_view type_name, int function_count, int callback_index,
                      Action* handler)
        : code(to_host(type_name)),
          name(type_name),
          functions(function_count),
          callback(callback_index),
          action(handler) {}

    constexpr bool calls_back() const { return callback != kNoCallback; }

    std::int32_t code;
    std::string_view name;
    int functions;   // number of functions of `external` that send it
    int callback;    // index of the string item that names the callback
    Action* action;  // null: nothing to do
};

// clang-format off
inline constexpr auto kCommands = std::to_array<Command>({
    // name                functions  callback    action
    {"getCapabilities",      1,     0,            get_capabilities},
    {"getAccountsAsync",     1,     0,            get_accounts},
    {"showAccounts",         1,     kNoCallback,  show_accounts},
    {"sendAction",           1,     kNoCallback,  nullptr},
    {"logoff",               1,     kNoCallback,  nullptr},
    {"refresh",              2,     kNoCallback,  nullptr},
    {"getStoreDetails",      1,     0,            get_store_details},
    {"getInstalledApps",     1,     0,            get_installed_apps},
    {"settingsMenu",         1,     kNoCallback,  show_settings_menu},
    {"ajax",                 1,     5,            relay_request},
    {"subscribe",            1,     1,            subscribe},
    {"unsubscribe",          1,     1,            unsubscribe},
    {"launchApp",            1,     1,            launch_app},
    {"writeTraceMessage",    1,     kNoCallback,  write_trace_message},
    {"getFileUri",           1,     1,            get_file_uri},
    {"goOnline",             1,     kNoCallback,  nullptr},
    {"getItem",              1,     1,            get_item},
    {"setItem",              1,     2,            set_item},
    {"openURL",              1,     kNoCallback,  open_url},
    {"recolorImage",         1,     1,            recolor_image},
    {"errorDialog",          1,     4,            report_error},
    {"getUserDisplayName",   1,     0,            get_user_display_name},
    {"updateSubPosition",    1,     kNoCallback,  move_subscription},
    {"siteLoaded",           1,     kNoCallback,  nullptr},
    {"sharedUserModeLogon",  1,     kNoCallback,  nullptr},
    {"offlineErrorTryAgain", 1,     kNoCallback,  nullptr},
    {"ready",                1,     kNoCallback,  nullptr},
    {"openDefaultStore",     1,     kNoCallback,  open_default_store},
    {"launchResource",       1,     1,            launch_resource},
});
// clang-format on

constexpr const Command* find_command(std::int32_t code) {
    const auto found = std::ranges::find(kCommands, code, &Command::code);
    return found == kCommands.end() ? nullptr : &*found;
}

// Message types of the link itself; all others from the page are commands.
constexpr bool is_link_type(std::int32_t code) {
    return code == to_host("announce") || code == to_host("answerDelivered") ||
           code == to_host("resourcesTaken");
}
static_assert(std::ranges::all_of(kToHost, [](const MessageType& type) {
    return is_link_type(type.code) !=
           (std::ranges::count(kCommands, type.code, &Command::code) == 1);
}));

}  // namespace kestrel
