#pragma once

#include <functional>
#include <string>

#include "workbench/answers/answer.h"

namespace kestrel {

// Sends the answer to one request, immediately or later. Use it at most once; if it is never used,
// the page's callback is never called.
class Reply {
  public:
    // Sends to the requesting process if it is still connected. False if the answer is longer than
    // the extension accepts.
    using Send = std::function<bool(const Answer&)>;

    // `callback` is the one that the page named; with "", nothing is sent.
    Reply(std::string callback, Send send);

    // Calls back with `value`, or with null if it is too long for the page.
    void operator()(const ScriptValue& value) const;

    // Calls back with the five texts, or with an error result if they are too long for the page.
    void operator()(const AjaxResult& result) const;

  private:
    std::string callback_;
    Send send_;
};

}  // namespace kestrel
