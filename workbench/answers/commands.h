// What the page can ask for: one row each, and how it is carried out.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "ipc/protocol.h"
#include "workbench/answers/actions.h"

namespace kestrel {

// In place of the index of a text that holds a callback.
inline constexpr int kNoCallback = -1;

struct Command {
    // A name that is not a message type does not compile.
    consteval Command(std::string_view type_name, int sent_by, int callback_index, Action* how)
        : code(to_host(type_name)),
          name(type_name),
          functions(sent_by),
          callback(callback_index),
          action(how) {}

    constexpr bool calls_back() const { return callback != kNoCallback; }

    std::int32_t code;
    std::string_view name;
    int functions;   // of `external` that send it
    int callback;    // the index of the text that names it, as sent
    Action* action;  // null: the page only tells
};

// clang-format off
inline constexpr auto kCommands = std::to_array<Command>({
    // name                functions  callback    carried out by
    {"getCapabilities",      1,     0,            tell_capabilities},
    {"getAccountsAsync",     1,     0,            tell_accounts},
    {"showAccounts",         1,     kNoCallback,  show_accounts},
    {"sendAction",           1,     kNoCallback,  nullptr},
    {"logoff",               1,     kNoCallback,  nullptr},
    {"refresh",              2,     kNoCallback,  nullptr},
    {"getStoreDetails",      1,     0,            tell_store_details},
    {"getInstalledApps",     1,     0,            tell_installed_apps},
    {"settingsMenu",         1,     kNoCallback,  show_settings_menu},
    {"ajax",                 1,     5,            relay_request},
    {"subscribe",            1,     1,            subscribe},
    {"unsubscribe",          1,     1,            unsubscribe},
    {"launchApp",            1,     1,            launch_app},
    {"writeTraceMessage",    1,     kNoCallback,  write_trace_message},
    {"getFileUri",           1,     1,            tell_file_uri},
    {"goOnline",             1,     kNoCallback,  nullptr},
    {"getItem",              1,     1,            tell_item},
    {"setItem",              1,     2,            keep_item},
    {"openURL",              1,     kNoCallback,  open_url},
    {"recolorImage",         1,     1,            recolor_image},
    {"errorDialog",          1,     4,            report_error},
    {"getUserDisplayName",   1,     0,            tell_user_display_name},
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

// The types that the link itself needs; every other one from the page is a command.
constexpr bool is_link_type(std::int32_t code) {
    return code == to_host("announce") || code == to_host("answerDelivered") ||
           code == to_host("resourcesTaken");
}
static_assert(std::ranges::all_of(kToHost, [](const MessageType& type) {
    return is_link_type(type.code) !=
           (std::ranges::count(kCommands, type.code, &Command::code) == 1);
}));

}  // namespace kestrel
