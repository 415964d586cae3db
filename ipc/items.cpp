#include "ipc/items.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

namespace kestrel {
namespace {

// The item that starts at `payload[position]`, or nothing if its NUL is missing.
std::optional<std::string_view> next_item(std::span<const char> payload, std::size_t& position) {
    const std::span<const char> rest = payload.subspan(position);
    const void* nul = rest.empty() ? nullptr : std::memchr(rest.data(), '\0', rest.size());
    if (nul == nullptr) return std::nullopt;
    const auto length = static_cast<std::size_t>(static_cast<const char*>(nul) - rest.data());
    position += length + 1;
    return std::string_view(rest.data(), length);
}

constexpr bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

bool counts_are_possible(const webkit_message& header) {
    return header.num_of_ints >= 0 && header.num_of_strings >= 0 &&
           header.total_len_of_string >= 0 &&
           std::int64_t{header.num_of_ints} + header.num_of_strings <= header.total_len_of_string;
}

int parse_int(std::string_view text) {
    while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    std::int64_t value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec == std::errc::result_out_of_range) {
        using Limits = std::numeric_limits<std::int64_t>;
        value = text.front() == '-' ? Limits::min() : Limits::max();
    }
    return static_cast<int>(value);
}

bool decode_items(const webkit_message& frame, ItemViews& items) {
    if (!counts_are_possible(frame)) return false;
    items.ints.resize(static_cast<std::size_t>(frame.num_of_ints));
    items.strings.resize(static_cast<std::size_t>(frame.num_of_strings));
    const std::span<const char> payload = payload_of(frame);
    std::size_t position = 0;
    for (int& value : items.ints) {
        const auto text = next_item(payload, position);
        if (!text) return false;
        value = parse_int(*text);
    }
    for (std::string_view& value : items.strings) {
        const auto text = next_item(payload, position);
        if (!text) return false;
        value = *text;
    }
    return true;
}

bool decode_items(const webkit_message& frame, Items& items) {
    ItemViews views;
    if (!decode_items(frame, views)) return false;
    items.ints = std::move(views.ints);
    items.strings.assign(views.strings.begin(), views.strings.end());
    return true;
}

}  // namespace kestrel
