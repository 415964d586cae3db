#include "tests/ipc-trace/json_object.h"

#include <stdexcept>

namespace kestrel::testing {
namespace {

std::string bytes_of_hex(std::string_view hex) {
    std::string bytes;
    for (; hex.size() >= 2; hex.remove_prefix(2)) {
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(0, 2)), nullptr, 16));
    }
    return bytes;
}

std::string bytes_of_item(JsonNode* item) {
    if (JSON_NODE_HOLDS_OBJECT(item)) {
        return bytes_of_hex(json_object_get_string_member(json_node_get_object(item), "hex"));
    }
    return json_node_get_string(item);
}

}  // namespace

JsonObjectText::JsonObjectText(const std::string& json) {
    const auto length = static_cast<gssize>(json.size());
    if (json_parser_load_from_data(parser_.get(), json.data(), length, nullptr) == FALSE ||
        !JSON_NODE_HOLDS_OBJECT(json_parser_get_root(parser_.get()))) {
        throw std::runtime_error("no JSON object: " + json);
    }
    object_ = json_node_get_object(json_parser_get_root(parser_.get()));
}

bool JsonObjectText::has(const char* member) const {
    return json_object_has_member(object_, member) != FALSE;
}

long JsonObjectText::integer(const char* member) const {
    return json_object_get_int_member(object_, member);
}

std::string JsonObjectText::text(const char* member) const {
    return json_object_get_string_member(object_, member);
}

std::vector<long> JsonObjectText::integers(const char* member) const {
    JsonArray* const items = json_object_get_array_member(object_, member);
    std::vector<long> values;
    for (guint i = 0; i < json_array_get_length(items); ++i) {
        values.push_back(json_array_get_int_element(items, i));
    }
    return values;
}

std::vector<std::string> JsonObjectText::strings(const char* member) const {
    JsonArray* const items = json_object_get_array_member(object_, member);
    std::vector<std::string> values;
    for (guint i = 0; i < json_array_get_length(items); ++i) {
        values.push_back(bytes_of_item(json_array_get_element(items, i)));
    }
    return values;
}

std::string JsonObjectText::bytes(const char* member) const {
    return bytes_of_item(json_object_get_member(object_, member));
}

}  // namespace kestrel::testing
