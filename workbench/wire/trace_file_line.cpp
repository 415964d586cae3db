#include "workbench/wire/trace_file_line.h"

#include <glib.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"

namespace kestrel {
namespace {

using nlohmann::json;

// A message line is an object of arrays of objects (for bytes).
constexpr int kMaxDepth = 3;
constexpr int kMaxValues = 100'000;

// Since 1970; system_clock ends in 2262.
constexpr gint64 kMaxSeconds = 9'000'000'000;

struct DateTimeUnref {
    void operator()(GDateTime* time) const { g_date_time_unref(time); }
};
using DateTime = std::unique_ptr<GDateTime, DateTimeUnref>;

json parse(std::string_view line) {
    int values = 0;
    const auto check = [&values](int depth, json::parse_event_t, const json&) {
        if (depth > kMaxDepth || ++values > kMaxValues)
            throw InvalidTraceFileLine("not a trace line");
        return true;
    };
    json parsed = json::parse(line, check, false);
    if (parsed.is_discarded()) throw InvalidTraceFileLine("not JSON");
    if (!parsed.is_object()) throw InvalidTraceFileLine("not a JSON object");
    return parsed;
}

const json& member(const json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end()) throw InvalidTraceFileLine(std::string("no \"") + name + '"');
    return *found;
}

int integer(const json& value, const char* name) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value.is_number_integer() &&
        !(value.is_number_unsigned() && value.get<std::uint64_t>() > Limits::max())) {
        const auto number = value.get<std::int64_t>();
        if (number >= Limits::min() && number <= Limits::max()) return static_cast<int>(number);
    }
    throw InvalidTraceFileLine(std::string("\"") + name + "\" is not a 32-bit integer");
}

const std::string& text(const json& value, const char* name) {
    if (!value.is_string())
        throw InvalidTraceFileLine(std::string("\"") + name + "\" is not a string");
    return value.get_ref<const std::string&>();
}

std::string bytes(const json& value, const char* name) {
    if (!value.is_object())
        throw InvalidTraceFileLine(std::string("\"") + name + "\" has no bytes");
    const std::string& hex = text(member(value, "hex"), "hex");
    std::string decoded;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        const int high = g_ascii_xdigit_value(hex[i]);
        const int low = g_ascii_xdigit_value(hex[i + 1]);
        if (high < 0 || low < 0) break;
        decoded += static_cast<char>(high * 16 + low);
    }
    if (decoded.size() * 2 != hex.size()) throw InvalidTraceFileLine("\"hex\" is not hexadecimal");
    return decoded;
}

std::chrono::system_clock::time_point time_of(const json& object) {
    const std::string& iso = text(member(object, "time"), "time");
    const DateTime parsed(g_date_time_new_from_iso8601(iso.c_str(), nullptr));
    const gint64 seconds = parsed ? g_date_time_to_unix(parsed.get()) : -1;
    if (seconds < 0 || seconds > kMaxSeconds) throw InvalidTraceFileLine("\"time\" is not a time");
    return std::chrono::system_clock::time_point(
        std::chrono::seconds(seconds) +
        std::chrono::microseconds(g_date_time_get_microsecond(parsed.get())));
}

Direction direction_of(const json& object) {
    const std::string& direction = text(member(object, "direction"), "direction");
    if (direction == "to-host") return Direction::from_page;
    if (direction == "to-page") return Direction::to_page;
    throw InvalidTraceFileLine("\"direction\" is neither to-host nor to-page");
}

const json& list(const json& object, const char* name) {
    const json& value = member(object, name);
    if (!value.is_array())
        throw InvalidTraceFileLine(std::string("\"") + name + "\" is not an array");
    return value;
}

Frame frame_of_items(const json& object, std::int32_t type) {
    std::vector<int> ints;
    for (const json& value : list(object, "ints")) ints.push_back(integer(value, "ints"));
    std::vector<std::string> strings;
    for (const json& value : list(object, "strings")) {
        strings.push_back(value.is_object() ? bytes(value, "strings") : text(value, "strings"));
        if (strings.back().find('\0') != std::string::npos)
            throw InvalidTraceFileLine("a string contains a NUL");
    }
    return build_frame(type, ints, std::vector<std::string_view>(strings.begin(), strings.end()));
}

// For a frame whose items do not fit its header, the line has the payload instead.
Frame frame_of_bytes(const json& object, std::int32_t type) {
    const std::string payload = bytes(member(object, "payload"), "payload");
    Frame frame(static_cast<webkit_message*>(std::malloc(sizeof(webkit_message) + payload.size())));
    if (!frame) throw std::bad_alloc();
    *frame = {type, integer(member(object, "num_of_ints"), "num_of_ints"),
              integer(member(object, "num_of_strings"), "num_of_strings"),
              static_cast<std::int32_t>(payload.size())};
    payload.copy(payload_begin(*frame), payload.size());
    return frame;
}

MessageRecord message_in(const json& object) {
    MessageRecord record;
    record.direction = direction_of(object);
    const std::int32_t type = integer(member(object, "type"), "type");
    const std::int32_t length = integer(member(object, "length"), "length");
    if (length < 0) throw InvalidTraceFileLine("\"length\" is negative");
    Frame frame =
        object.contains("payload") ? frame_of_bytes(object, type) : frame_of_items(object, type);
    if (!frame) throw InvalidTraceFileLine("longer than any frame");
    record.is_exact = frame->total_len_of_string == length;
    record.size = sizeof(webkit_message) + static_cast<std::size_t>(length);
    record.frame = std::move(frame);
    return record;
}

MessageRecord record_in(const json& object) {
    const auto time = time_of(object);
    MessageRecord record;
    if (object.contains("note")) {
        record = record_of(text(object["note"], "note"));
    } else if (object.contains("dropped")) {
        const int count = integer(object["dropped"], "dropped");
        record = record_of("frames dropped: " + std::to_string(count));
    } else {
        record = message_in(object);
    }
    record.time = time;
    if (object.contains("pid")) record.pid = integer(object["pid"], "pid");
    return record;
}

}  // namespace

MessageRecord parse_trace_file_line(std::string_view line) { return record_in(parse(line)); }

}  // namespace kestrel
