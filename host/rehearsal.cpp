#include "host/rehearsal.h"

#include <json-glib/json-glib.h>

#include <memory>
#include <optional>

namespace kestrel {
namespace {

struct NodeFree {
    void operator()(JsonNode* node) const { json_node_unref(node); }
};
using Node = std::unique_ptr<JsonNode, NodeFree>;

// The array `name` of the JSON object `text`, or null. It belongs to `holder`.
JsonArray* array_member(const std::string& text, const char* name, Node& holder) {
    holder.reset(json_from_string(text.c_str(), nullptr));
    if (!holder || !JSON_NODE_HOLDS_OBJECT(holder.get())) return nullptr;
    JsonNode* member = json_object_get_member(json_node_get_object(holder.get()), name);
    if (member == nullptr || !JSON_NODE_HOLDS_ARRAY(member)) return nullptr;
    return json_node_get_array(member);
}

}  // namespace

void Rehearsal::note_command(const Command& command) { ++arrivals_[command.code]; }

void Rehearsal::take_report(const std::string& trace) {
    Node holder;
    JsonArray* names = array_member(trace, "calledBack", holder);
    if (names == nullptr) return;
    has_report_ = true;
    for (guint i = 0; i < json_array_get_length(names); ++i) {
        JsonNode* name = json_array_get_element(names, i);
        if (JSON_NODE_HOLDS_VALUE(name) && json_node_get_value_type(name) == G_TYPE_STRING) {
            called_back_.insert(json_node_get_string(name));
        }
    }
}

std::vector<std::string> Rehearsal::missing() const {
    if (!has_begun_) return {"the page never said that it is ready"};
    std::vector<std::string> lines;
    for (const Command& command : kCommands) {
        const std::string name(command.name);
        const auto found = arrivals_.find(command.code);
        const int arrived = found == arrivals_.end() ? 0 : found->second;
        if (arrived < command.functions) {
            lines.push_back(name + " reached the host " + std::to_string(arrived) + " of " +
                            std::to_string(command.functions) + " times");
        }
        if (command.calls_back && !called_back_.contains(name)) {
            lines.push_back(name + " was not called back");
        }
    }
    if (!has_report_) lines.emplace_back("the page did not report which callbacks ran");
    if (unconfirmed_answers_ > 0) {
        lines.push_back("answers not confirmed: " + std::to_string(unconfirmed_answers_));
    }
    return lines;
}

}  // namespace kestrel
