#pragma once

#include <json-glib/json-glib.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::testing {

// A JSON object, read by another program's parser.
class JsonObjectText {
  public:
    // Throws std::runtime_error for a text that is no JSON object.
    explicit JsonObjectText(const std::string& json);

    bool has(const char* member) const;
    long integer(const char* member) const;
    std::string text(const char* member) const;
    std::vector<long> integers(const char* member) const;

    // The bytes of items that are texts or {"hex": "..."}.
    std::vector<std::string> strings(const char* member) const;
    std::string bytes(const char* member) const;

  private:
    struct Unref {
        void operator()(JsonParser* parser) const { g_object_unref(parser); }
    };
    std::unique_ptr<JsonParser, Unref> parser_{json_parser_new()};
    JsonObject* object_ = nullptr;
};

}  // namespace kestrel::testing
