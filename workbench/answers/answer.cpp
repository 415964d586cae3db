#include "workbench/answers/answer.h"

#include <array>

#include "ipc/frame_builder.h"

namespace kestrel {
namespace {

// `arguments` are literals, separated by commas. The newline ends a comment in the page's text.
std::string call_expression(const std::string& callback, const std::string& arguments) {
    return "(() => (" + callback + "\n)(" + arguments + "))";
}

bool takes_arguments(const std::string& callback) {
    return callback.find(kAjaxCompletion) != std::string::npos;
}

}  // namespace

std::optional<Answer> call_back(const std::string& callback, const ScriptValue& value) {
    if (callback.empty()) return std::nullopt;
    return Answer{call_expression(callback, script_literal(value)), {}};
}

std::optional<Answer> call_back(const std::string& completion, const AjaxResult& result) {
    if (completion.empty()) return std::nullopt;
    const std::array texts = {result.id, result.status, result.status_text, result.headers,
                              result.body};
    if (takes_arguments(completion)) return Answer{completion, {texts.begin(), texts.end()}};

    std::string arguments;
    for (const std::string& text : texts) {
        if (!arguments.empty()) arguments += ',';
        arguments += script_literal(text);
    }
    return Answer{call_expression(completion, arguments), {}};
}

Frame answer_frame(const Answer& answer) {
    std::vector<std::string_view> strings = {answer.callback};
    strings.insert(strings.end(), answer.arguments.begin(), answer.arguments.end());
    Frame frame = build_frame(to_page("answer"), {}, strings);
    if (frame && frame->total_len_of_string > kMaxInboundPayload) frame = nullptr;
    return frame;
}

}  // namespace kestrel
