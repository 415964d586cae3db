#include "workbench/answers/reply.h"

#include <utility>

namespace kestrel {

Reply::Reply(std::string callback, Send send)
    : callback_(std::move(callback)), send_(std::move(send)) {}

void Reply::operator()(const ScriptValue& value) const {
    const auto answer = call_back(callback_, value);
    if (answer && !send_(*answer)) send_(*call_back(callback_, nullptr));
}

void Reply::operator()(const AjaxResult& result) const {
    const auto answer = call_back(callback_, result);
    if (!answer || send_(*answer)) return;
    send_(*call_back(
        callback_, AjaxResult{.id = result.id,
                              .status = "0",
                              .status_text = "the answer of " + std::to_string(result.body.size()) +
                                             " bytes is too long for the page",
                              .headers = "",
                              .body = ""}));
}

}  // namespace kestrel
