// The content of an answer message (type 1). The extension evaluates the callback text in the page
// and calls the resulting function: with five strings if the text contains kAjaxCompletion, else
// without arguments. An answer with data is therefore a function expression that calls the page's
// callback with the data.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ipc/frame.h"
#include "workbench/answers/script_literal.h"

namespace kestrel {

struct Answer {
    std::string callback;
    std::vector<std::string> arguments;
};

// The answer that calls `callback`, a function's name or source text, with `value`. None when the
// page named no callback.
std::optional<Answer> call_back(const std::string& callback, const ScriptValue& value);

struct AjaxResult {
    std::string id;
    std::string status;
    std::string status_text;
    std::string headers;
    std::string body;
};

// The answer to a relayed request: the five texts, in this order, as the callback's arguments.
std::optional<Answer> call_back(const std::string& completion, const AjaxResult& result);

// The message that carries an answer. Null if it is longer than the extension accepts.
Frame answer_frame(const Answer& answer);

}  // namespace kestrel
