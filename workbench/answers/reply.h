#pragma once

#include <functional>
#include <string>

#include "workbench/answers/answer.h"

namespace kestrel {

// The way back to the page for the answer to one request: now, later or never. To be used once; a
// reply that is dropped unused leaves the page waiting.
class Reply {
  public:
    // Sends to the process that asked, if it is still there. False when the answer is longer than
    // that process would take.
    using Send = std::function<bool(const Answer&)>;

    // `callback` is what the page named; "" for none, and then nothing is ever sent.
    Reply(std::string callback, Send send);

    // Calls back with `value`, or with null if it is too long for the page.
    void operator()(const ScriptValue& value) const;

    // Calls back with the five texts. A result that is too long for the page becomes a failure that
    // says so.
    void operator()(const AjaxResult& result) const;

  private:
    std::string callback_;
    Send send_;
};

}  // namespace kestrel
