#pragma once

#include <string>
#include <vector>

#include "workbench/answers/commands.h"
#include "workbench/answers/request.h"

namespace kestrel {

// Watches what a page does, to tell in the end what was not as it should be. May have the page run
// scripts: those that its functions return, if not "".
class PageCheck {
  public:
    virtual ~PageCheck() = default;

    // The page has loaded and got the host's first word. Called again when it is loaded again.
    virtual std::string on_page_shown() { return ""; }

    virtual std::string on_command(const Command& command, const Request& request) = 0;

    virtual void on_answer_sent() {}
    virtual void on_answer_confirmed() {}

    // Nothing more is to be expected.
    virtual bool is_over() const = 0;

    // One line for everything that is not as it should be; empty when all went well.
    virtual std::vector<std::string> failures() const = 0;

    // One line for the case that there are no failures.
    virtual std::string success() const = 0;
};

}  // namespace kestrel
