#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace kestrel::testing {

// A JSON object, read by a parser that shares nothing with its writer.
class JsonObjectText {
  public:
    // Throws nlohmann::json::exception for a text that is no JSON object.
    explicit JsonObjectText(const std::string& json);

    bool has(const char* member) const { return object_.contains(member); }
    long integer(const char* member) const { return object_.at(member); }
    std::string text(const char* member) const { return object_.at(member); }
    std::vector<long> integers(const char* member) const { return object_.at(member); }

    // The bytes of items that are texts or {"hex": "..."}.
    std::vector<std::string> strings(const char* member) const;
    std::string bytes(const char* member) const;

  private:
    nlohmann::json object_;
};

}  // namespace kestrel::testing
