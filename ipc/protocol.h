// The whole wire at a glance: limits, the frame's header, and every message type by direction.
//
// A frame is the 16-byte header, native byte order, followed at once by `total_len_of_string`
// bytes of payload: first `num_of_ints` integers as decimal text, then `num_of_strings` strings,
// each item ended by one NUL. Nothing else: no padding, no checksum, no trailer.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace kestrel {

// --- Limits -------------------------------------------------------------------------------------

inline constexpr std::int32_t kMaxInboundPayload = 5'000'000;  // what the extension accepts
inline constexpr std::size_t kMaxFrame = 0x7ffff000;           // what one write(2) can take
inline constexpr std::size_t kMaxSocketPath = 107;             // sun_path less its NUL
inline constexpr std::size_t kInboundHandlerSlots = 61;        // types 0 to 60
inline constexpr std::size_t kMinHandlerStrings = 6;           // handlers may index up to [5]
inline constexpr int kSendBuffer = 4 * 1024 * 1024;            // requested, in bytes
inline constexpr int kConnectRetries = 10;                     // after the first attempt
inline constexpr unsigned kConnectRetrySeconds = 1;

// --- Message types ------------------------------------------------------------------------------

struct MessageType {
    std::int32_t code;
    std::string_view name;
};

inline constexpr auto kToHost = std::to_array<MessageType>({
    {2, "getCapabilities"},
    {3, "getAccountsAsync"},
    {4, "showAccounts"},
    {5, "sendAction"},
    {6, "logoff"},
    {7, "refresh"},
    {8, "getStoreDetails"},
    {9, "getInstalledApps"},
    {10, "settingsMenu"},
    {11, "ajax"},
    {12, "subscribe"},
    {13, "unsubscribe"},
    {14, "launchApp"},
    {15, "writeTraceMessage"},
    {16, "getFileUri"},
    {17, "goOnline"},
    {18, "getItem"},
    {19, "setItem"},
    {20, "openURL"},
    {21, "recolorImage"},
    {22, "errorDialog"},
    {23, "getUserDisplayName"},
    {24, "updateSubPosition"},
    {25, "siteLoaded"},
    {26, "sharedUserModeLogon"},
    {27, "offlineErrorTryAgain"},
    {28, "ready"},
    {32, "openDefaultStore"},
    {33, "answerDelivered"},  // an answer reached the page
    {35, "resourcesTaken"},   // one string: the URL that the host may load now
    {43, "launchResource"},
    {61, "announce"},  // one integer: the web process's id; the first frame of a connection
});

inline constexpr auto kToPage = std::to_array<MessageType>({
    {0, "script"},            // [0] script text, run in the page
    {1, "answer"},            // [0] callback text, [1] to [5] its arguments if it is an ajax answer
    {34, "resourcesAndUrl"},  // [0] URL of the next page, [1] resources text
});

// An answer whose callback text contains this carries five arguments; any other carries none.
inline constexpr std::string_view kAjaxCompletion = "zyns_ajax_complete";
inline constexpr std::size_t kAjaxArguments = 5;

// The row of a code, or of a name, in one direction's table; null if it has none.
constexpr const MessageType* find_type(std::span<const MessageType> types, std::int32_t code) {
    for (const MessageType& type : types) {
        if (type.code == code) return &type;
    }
    return nullptr;
}

constexpr const MessageType* find_type(std::span<const MessageType> types, std::string_view name) {
    for (const MessageType& type : types) {
        if (type.name == name) return &type;
    }
    return nullptr;
}

// The code of a name; one that is not in the table does not compile.
consteval std::int32_t to_host(std::string_view name) { return find_type(kToHost, name)->code; }
consteval std::int32_t to_page(std::string_view name) { return find_type(kToPage, name)->code; }

}  // namespace kestrel

// The header of one frame; the payload follows it in the same block. Frames are allocated with
// malloc and released with free by whoever holds them last.
struct webkit_message {
    std::int32_t msg_type;
    std::int32_t num_of_ints;
    std::int32_t num_of_strings;
    std::int32_t total_len_of_string;  // payload length in bytes, every NUL included
};
static_assert(sizeof(webkit_message) == 16);
