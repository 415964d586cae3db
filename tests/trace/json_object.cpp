#include "tests/trace/json_object.h"

#include <string_view>

namespace kestrel::testing {
namespace {

std::string bytes_of_hex(std::string_view hex) {
    std::string bytes;
    for (; hex.size() >= 2; hex.remove_prefix(2)) {
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(0, 2)), nullptr, 16));
    }
    return bytes;
}

std::string bytes_of_item(const nlohmann::json& item) {
    if (item.is_object()) return bytes_of_hex(item.at("hex").get<std::string>());
    return item;
}

}  // namespace

JsonObjectText::JsonObjectText(const std::string& json)
    : object_(nlohmann::json::parse(json).get<nlohmann::json::object_t>()) {}

std::vector<std::string> JsonObjectText::strings(const char* member) const {
    std::vector<std::string> values;
    for (const nlohmann::json& item : object_.at(member)) values.push_back(bytes_of_item(item));
    return values;
}

std::string JsonObjectText::bytes(const char* member) const {
    return bytes_of_item(object_.at(member));
}

}  // namespace kestrel::testing
