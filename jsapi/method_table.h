// The functions of `external`: one row each, in the order in which the page sees them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ipc/protocol.h"

namespace kestrel {

inline constexpr int kMaxArguments = 6;

// How an argument is read; arguments are read in their order.
enum class Read : std::uint8_t {
    text,         // any value, converted to a string by script's rules
    string_only,  // a string, any other type as ""
    number,       // a number, truncated to 32 bits
    ignored,      // not converted
};

// An entry of a message's lists: an argument or, in the integer list, the difference of two.
struct Item {
    static constexpr int kNothing = -1;

    int argument;
    int subtrahend = kNothing;

    constexpr Item operator-(Item other) const { return {argument, other.argument}; }
};

// A list as a field of a constexpr table.
template <typename T>
class Row {
  public:
    template <typename... Entries>
    constexpr Row(Entries... entries) : entries_{entries...}, size_(sizeof...(entries)) {}

    constexpr const T* begin() const { return entries_.data(); }
    constexpr const T* end() const { return entries_.data() + size_; }
    constexpr std::size_t size() const { return size_; }
    constexpr const T& operator[](std::size_t i) const { return entries_[i]; }

  private:
    std::array<T, kMaxArguments> entries_;
    std::size_t size_;
};

struct PageMethod {
    static constexpr int kAnyCount = -1;

    std::string_view name;    // on `external`
    std::string_view member;  // of KsJS_proxy, and the name of its message type
    int expected;             // arguments; any other number is refused
    Row<Read> reads;
    Row<Item> ints;
    Row<Item> strings;
    std::string_view error;  // the error line up to the argument count
    std::string_view line_end = "\n";
};

namespace method_columns {
using enum Read;
inline constexpr int any = PageMethod::kAnyCount;
inline constexpr Item a0{0}, a1{1}, a2{2}, a3{3}, a4{4}, a5{5};
}  // namespace method_columns

consteval auto page_methods() {
    using namespace method_columns;
    // clang-format off
    return std::to_array<PageMethod>({
    //  name                    member          expected  reads             ints        strings       error
        {"getCapabilities",     "getCapabilities",     2, {text, text},     {},         {a1, a0},     "KsJS_proxy::getCapabilities  Err got "},
        {"ready",               "ready",             any, {},               {},         {},           ""},
        {"getStoreDetails",     "getStoreDetails",     1, {text},           {},         {a0},         "Error:: KsJS_proxy::getStoreDetails Err got "},
        {"openDefaultStore",    "openDefaultStore",    0, {},               {},         {},           "Error KsJS_proxy::getOpenDefaultStore  "},
        {"noteRefreshStart",    "refresh",           any, {},               {},         {},           ""},
        {"getInstalledApps",    "getInstalledApps",    2, {text, text},     {},         {a1},         "Error KsJS_proxy::getInstalledApps  "},
        {"settingsMenu",        "settingsMenu",        4, {number, number, number, number},
                                                                            {a0, a1, a2 - a0, a3 - a1},
                                                                                        {},           "Error:: KsJS_proxy::settingsMenu Err got "},
        {"getAccountsAsync",    "getAccountsAsync",    1, {text},           {},         {a0},         "KsJS_proxy::getAccountsAsync  Err got "},
        {"sendAction",          "sendAction",          1, {text},           {},         {a0},         "KsJS_proxy::sendAction  Err got "},
        {"refresh",             "refresh",           any, {},               {},         {},           ""},
        {"showAccounts",        "showAccounts",      any, {},               {},         {},           ""},
        {"logOff",              "logoff",            any, {},               {},         {},           ""},
        {"ajax",                "ajax",                6, {string_only, string_only, string_only, string_only, string_only, string_only},
                                                                            {},         {a0, a1, a2, a3, a4, a5},
                                                                                                      "KsJS_proxy::ajax Err got "},
        {"subscribe",           "subscribe",           2, {text, text},     {},         {a0, a1},     "From JKsJS_proxy::subscribe Err got "},
        {"unsubscribe",         "unsubscribe",         2, {text, text},     {},         {a0, a1},     "From JKsJS_proxy::unsubscribe Err got "},
        {"launchApp",           "launchApp",           2, {text, text},     {},         {a0, a1},     "From JKsJS_proxy::launchApp Err got "},
        {"writeTraceMessage",   "writeTraceMessage",   4, {text, ignored, ignored, ignored},
                                                                            {},         {a0},         "From JKsJS_proxy::writeTraceMessage Err got "},
        {"getFileUri",          "getFileUri",          2, {text, text},     {},         {a0, a1},     "From JKsJS_proxy::getFileUri Err got "},
        {"goOnline",            "goOnline",            2, {ignored, text},  {},         {a1},         "From JKsJS_proxy::goOnline Err got "},
        {"getItem",             "getItem",             2, {text, text},     {},         {a0, a1},     "KsJS_proxy::getItem Error got "},
        {"setItem",             "setItem",             3, {text, text, text}, {},       {a0, a1, a2}, "KsJS_proxy::setItem Err got "},
        {"openUrl",             "openURL",             1, {text},           {},         {a0},         "KsJS_proxy::openURL Err got "},
        {"recolorImage",        "recolorImage",        6, {text, number, number, number, ignored, text},
                                                                            {a1, a2, a3}, {a0, a5},   "From JKsJS_proxy::recolorImage Err got "},
        {"errorDialog",         "errorDialog",         5, {string_only, string_only, text, text, text},
                                                                            {},         {a0, a1, a2, a3, a4},
                                                                                                      "From JKsJS_proxy::errorDialog Err got "},
        {"getUserDisplayName",  "getUserDisplayName",  1, {text},           {},         {a0},         "From JKsJS_proxy::getUserDisplayName Err got "},
        {"updateSubPosition",   "updateSubPosition",   2, {text, text},     {},         {a0, a1},     "From JKsJS_proxy::updateSubPosition Err got "},
        {"siteLoaded",          "siteLoaded",          0, {},               {},         {},           "From JKsJS_proxy::siteLoaded Err got "},
        {"sharedUserModeLogon", "sharedUserModeLogon", 0, {},               {},         {},           "KsJS_proxy::sharedUserModeLogon Err got ", " \n"},
        {"offlineErrorTryAgain","offlineErrorTryAgain",0, {},               {},         {},           "KsJS_proxy::offlineErrorTryAgain Err got "},
        {"launchResource",      "launchResource",      2, {text, text},     {},         {a0, a1},     "Error KsJS_proxy::launchResource "},
    });
    // clang-format on
}

inline constexpr auto kPageMethods = page_methods();

// A row is valid if its message type exists, it reads as many arguments as it expects, sends only
// what it has read, and sends as integers only what it reads as numbers.
constexpr bool is_valid(const PageMethod& method) {
    const auto reads_number = [&](int argument) {
        return argument < static_cast<int>(method.reads.size()) &&
               method.reads[static_cast<std::size_t>(argument)] == Read::number;
    };
    const auto reads_text = [&](Item item) {
        if (item.argument >= static_cast<int>(method.reads.size())) return false;
        const Read read = method.reads[static_cast<std::size_t>(item.argument)];
        return read == Read::text || read == Read::string_only;
    };
    const auto is_its_type = [&](const MessageType& type) { return type.name == method.member; };
    return std::ranges::any_of(kToHost, is_its_type) &&
           static_cast<int>(method.reads.size()) == std::max(method.expected, 0) &&
           std::ranges::all_of(method.strings, reads_text) &&
           std::ranges::all_of(method.ints, [&](Item item) {
               return reads_number(item.argument) &&
                      (item.subtrahend == Item::kNothing || reads_number(item.subtrahend));
           });
}
static_assert(std::ranges::all_of(kPageMethods, is_valid));

}  // namespace kestrel
