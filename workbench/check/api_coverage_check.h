// Checks that the page calls every function and that every callback runs.
//
// When the page is ready, its function callEveryFunction is called. The check is over when the page
// has reported which callbacks ran and every answer has been confirmed. The report is a trace
// message: a JSON object whose member "calledBack" is an array of names.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "workbench/check/page_check.h"

namespace kestrel {

class ApiCoverageCheck final : public PageCheck {
  public:
    std::string on_command(const Command& command, const Request& request) override;

    // Counted from the first connection on: an answer that was sent before the page was ready may
    // be confirmed afterwards.
    void on_answer_sent() override { ++unconfirmed_answers_; }
    void on_answer_confirmed() override { --unconfirmed_answers_; }

    bool is_over() const override { return has_report_ && unconfirmed_answers_ == 0; }
    std::vector<std::string> failures() const override;
    std::string success() const override {
        return "every function reached the host, every callback ran";
    }

  private:
    void take_report(const std::string& trace);

    bool has_begun_ = false;
    bool has_report_ = false;
    int unconfirmed_answers_ = 0;
    std::map<std::int32_t, int> arrivals_;
    std::set<std::string, std::less<>> called_back_;
};

}  // namespace kestrel
