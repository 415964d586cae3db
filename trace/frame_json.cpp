#include "trace/frame_json.h"

#include <span>
#include <string_view>
#include <vector>

#include "base/utf8.h"
#include "ipc/frame.h"
#include "ipc/items.h"
#include "trace/time_text.h"

namespace kestrel {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

void append_hex(std::string& json, char c) {
    const unsigned byte = static_cast<unsigned char>(c);
    json += kHexDigits[byte >> 4U];
    json += kHexDigits[byte & 0xfU];
}

void append_text(std::string& json, std::string_view utf8) {
    json += '"';
    for (const char c : utf8) {
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            json += "\\u00";
            append_hex(json, c);
        } else {
            json += c;
        }
    }
    json += '"';
}

void append_bytes(std::string& json, std::span<const char> bytes) {
    json += "{\"hex\":\"";
    for (const char c : bytes) append_hex(json, c);
    json += "\"}";
}

// JSON has no text for bytes that are not UTF-8.
void append_item(std::string& json, std::string_view item) {
    if (is_utf8(item)) {
        append_text(json, item);
    } else {
        append_bytes(json, item);
    }
}

void append_item(std::string& json, int item) { json += std::to_string(item); }

template <typename Item>
void append_list(std::string& json, std::string_view name, const std::vector<Item>& items) {
    json += ",\"";
    json += name;
    json += "\":[";
    bool first = true;
    for (const Item& item : items) {
        if (!first) json += ',';
        first = false;
        append_item(json, item);
    }
    json += ']';
}

std::string opening(std::chrono::system_clock::time_point time, int pid) {
    return "{\"time\":\"" + utc_time(time) + "\",\"pid\":" + std::to_string(pid);
}

}  // namespace

std::string frame_json(std::chrono::system_clock::time_point time, Direction direction, int pid,
                       const webkit_message& message) {
    std::string json = opening(time, pid);
    json += direction == Direction::from_page ? ",\"direction\":\"to-host\""
                                              : ",\"direction\":\"to-page\"";
    json += ",\"type\":" + std::to_string(message.msg_type) + ",\"name\":";
    if (const MessageType* type = find_type(direction, message.msg_type)) {
        append_text(json, type->name);
    } else {
        json += "null";
    }
    json += ",\"length\":" + std::to_string(message.total_len_of_string);
    if (ItemViews items; decode_items(message, items)) {
        append_list(json, "ints", items.ints);
        append_list(json, "strings", items.strings);
    } else {
        json += ",\"num_of_ints\":" + std::to_string(message.num_of_ints) +
                ",\"num_of_strings\":" + std::to_string(message.num_of_strings) + ",\"payload\":";
        append_bytes(json, payload_of(message));
    }
    return json + '}';
}

std::string dropped_json(std::chrono::system_clock::time_point time, int pid, std::size_t count) {
    return opening(time, pid) + ",\"dropped\":" + std::to_string(count) + '}';
}

}  // namespace kestrel
