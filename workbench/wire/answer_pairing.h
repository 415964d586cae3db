// Matches answers to requests by the callback: an answer's expression contains the callback that
// the request passed. Messages carry no ids.
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>

#include "workbench/wire/message_record.h"

namespace kestrel {

class AnswerPairing {
  public:
    // Adds the next record. For an answer, returns the serial number of its request: the record's
    // answer_to, or else the unanswered request of the same process whose callback occurs first in
    // the answer; of several, the longest callback, then the oldest request. Each request is
    // matched once.
    std::optional<std::uint64_t> add(std::uint64_t serial, const MessageRecord& record);

    void clear() { unanswered_.clear(); }

  private:
    struct Unanswered {
        std::uint64_t serial;
        int pid;
        std::string callback;
    };

    void remember(std::uint64_t serial, const MessageRecord& record);
    std::list<Unanswered>::iterator find(int pid, std::string_view expression);

    std::list<Unanswered> unanswered_;  // oldest first, bounded
};

}  // namespace kestrel
