#include "ipc/frame.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <new>
#include <system_error>
#include <utility>

#include "base/error_line.h"

namespace kestrel {
namespace {

char* append_item(char* at, int value) {
    char* const end = std::to_chars(at, at + kMaxIntItem, value).ptr;
    *end = '\0';
    return end + 1;
}

char* append_item(char* at, std::string_view text) {
    if (!text.empty()) std::memcpy(at, text.data(), text.size());  // "" may have no bytes at all
    at[text.size()] = '\0';
    return at + text.size() + 1;
}

char* append_item(char* at, const std::string& text) { return stpcpy(at, text.c_str()) + 1; }

// What they take in a frame, less their NUL.
std::size_t carried_length(int value) { return std::to_string(value).size(); }
std::size_t carried_length(std::string_view text) { return text.size(); }
std::size_t carried_length(const std::string& text) { return std::strlen(text.c_str()); }

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

// Enough room for the payload: for a long one no more than it takes, for a short one what is found
// without a look at the items. Nothing when it would be too long.
template <typename Text>
std::optional<std::size_t> payload_room(std::span<const int> ints, std::span<const Text> strings) {
    constexpr std::size_t kShort = 1UL << 20U;
    std::size_t most = ints.size() * kMaxIntItem;
    for (const Text& text : strings) most += std::min(text.size(), kShort) + 1;
    if (most <= kShort) return most;

    PayloadLength length;
    for (const int value : ints) length.add(carried_length(value));
    for (const Text& text : strings) length.add(carried_length(text));
    return length.total();
}

template <typename Text>
Frame build_frame_of(std::int32_t type, std::span<const int> ints, std::span<const Text> strings) {
    const std::optional<std::size_t> room = payload_room(ints, strings);
    if (!room) {
        error_line(kFrameTooLong);
        return nullptr;
    }
    Frame frame(static_cast<webkit_message*>(std::malloc(sizeof(webkit_message) + *room)));
    if (!frame) {
        error_line(kNoMemoryForFrame);
        return nullptr;
    }
    char* at = payload_begin(*frame);
    for (const int value : ints) at = append_item(at, value);
    for (const Text& text : strings) at = append_item(at, text);
    *frame = {type, static_cast<std::int32_t>(ints.size()),
              static_cast<std::int32_t>(strings.size()),
              static_cast<std::int32_t>(at - payload_begin(*frame))};
    return frame;
}

}  // namespace

void PayloadLength::add(std::size_t text_length) {
    const std::size_t room = kMaxFrame - sizeof(webkit_message) - total_;
    if (text_length >= room) fits_ = false;
    if (fits_) total_ += text_length + 1;
}

std::optional<std::size_t> PayloadLength::total() const {
    return fits_ ? std::optional(total_) : std::nullopt;
}

Frame build_frame(std::int32_t type, std::span<const int> ints,
                  std::span<const std::string_view> strings) {
    return build_frame_of(type, ints, strings);
}

Frame build_frame_of_strings(std::int32_t type, std::span<const int> ints,
                             std::span<const std::string> strings) {
    return build_frame_of(type, ints, strings);
}

Frame copy_of(const webkit_message& frame) {
    const std::span<const char> bytes = bytes_of(frame);
    void* const block = std::malloc(bytes.size());
    if (block == nullptr) throw std::bad_alloc();
    std::memcpy(block, bytes.data(), bytes.size());
    return Frame(static_cast<webkit_message*>(block));
}

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
