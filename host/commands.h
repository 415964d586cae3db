// What the page can ask for: one row each, and how it is answered.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "host/answers.h"
#include "ipc/protocol.h"

namespace kestrel {

struct Command {
    // A name that is not a message type does not compile.
    consteval Command(std::string_view type_name, int sent_by, bool with_callback, Answerer* how)
        : code(to_host(type_name)),
          name(type_name),
          functions(sent_by),
          calls_back(with_callback),
          answerer(how) {}

    std::int32_t code;
    std::string_view name;
    int functions;  // of `external` that send it
    bool calls_back;
    Answerer* answerer;  // null: the page only tells
};

// clang-format off
inline constexpr auto kCommands = std::to_array<Command>({
    // name                functions  calls back  carried out by
    {"getCapabilities",      1,     true,       answer_capabilities},
    {"getAccountsAsync",     1,     true,       answer_accounts},
    {"showAccounts",         1,     false,      nullptr},
    {"sendAction",           1,     false,      nullptr},
    {"logoff",               1,     false,      nullptr},
    {"refresh",              2,     false,      nullptr},
    {"getStoreDetails",      1,     true,       answer_store_details},
    {"getInstalledApps",     1,     true,       answer_installed_apps},
    {"settingsMenu",         1,     false,      nullptr},
    {"ajax",                 1,     true,       answer_ajax},
    {"subscribe",            1,     true,       answer_subscribe},
    {"unsubscribe",          1,     true,       answer_unsubscribe},
    {"launchApp",            1,     true,       answer_launch},
    {"writeTraceMessage",    1,     false,      nullptr},
    {"getFileUri",           1,     true,       answer_file_uri},
    {"goOnline",             1,     false,      nullptr},
    {"getItem",              1,     true,       answer_item},
    {"setItem",              1,     true,       answer_set_item},
    {"openURL",              1,     false,      nullptr},
    {"recolorImage",         1,     true,       answer_recolored_image},
    {"errorDialog",          1,     true,       answer_error_dialog},
    {"getUserDisplayName",   1,     true,       answer_user_display_name},
    {"updateSubPosition",    1,     false,      answer_move},
    {"siteLoaded",           1,     false,      nullptr},
    {"sharedUserModeLogon",  1,     false,      nullptr},
    {"offlineErrorTryAgain", 1,     false,      nullptr},
    {"ready",                1,     false,      nullptr},
    {"openDefaultStore",     1,     false,      nullptr},
    {"launchResource",       1,     true,       answer_launch},
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
