// Watches the page call every function once, and tells what did not happen.
//
// It begins when the page says that it is ready, and is over when the page has reported which
// callbacks ran and every answer has been confirmed.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/commands.h"

namespace kestrel {

class Rehearsal {
  public:
    void begin() { has_begun_ = true; }
    bool has_begun() const { return has_begun_; }

    // Counts a command; call it only after the beginning.
    void note_command(const Command& command);

    // These count from the first connection on: a confirmation may come after the beginning for an
    // answer that was sent before.
    void note_answer_sent() { ++unconfirmed_answers_; }
    void note_answer_confirmed() { --unconfirmed_answers_; }

    // Takes a trace message of the page, if it is the report: a JSON object with the member
    // "calledBack", an array of the functions whose callbacks ran.
    void take_report(const std::string& trace);

    bool is_over() const { return has_report_ && unconfirmed_answers_ == 0; }

    // One line for everything that should have happened and has not; empty when all went well.
    std::vector<std::string> missing() const;

  private:
    bool has_begun_ = false;
    bool has_report_ = false;
    int unconfirmed_answers_ = 0;
    std::map<std::int32_t, int> arrivals_;
    std::set<std::string, std::less<>> called_back_;
};

}  // namespace kestrel
