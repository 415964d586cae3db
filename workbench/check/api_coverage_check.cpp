#include "workbench/check/api_coverage_check.h"

#include <nlohmann/json.hpp>

namespace kestrel {
namespace {

constexpr const char* kCallEverything = "window.callEveryFunction && window.callEveryFunction();";

}  // namespace

std::string ApiCoverageCheck::on_command(const Command& command, const Request& request) {
    if (has_begun_) {
        ++arrivals_[command.code];
        if (command.code == to_host("writeTraceMessage")) take_report(request.text(0));
        return "";
    }
    has_begun_ = command.code == to_host("ready");
    return has_begun_ ? kCallEverything : "";
}

void ApiCoverageCheck::take_report(const std::string& trace) {
    const auto report = nlohmann::json::parse(trace, nullptr, /*allow_exceptions=*/false);
    if (!report.is_object()) return;
    const auto names = report.find("calledBack");
    if (names == report.end() || !names->is_array()) return;
    has_report_ = true;
    for (const nlohmann::json& name : *names) {
        if (name.is_string()) called_back_.insert(name.get<std::string>());
    }
}

std::vector<std::string> ApiCoverageCheck::failures() const {
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
        if (command.calls_back() && !called_back_.contains(name)) {
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
