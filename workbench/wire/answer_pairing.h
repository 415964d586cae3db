// Finds the request that an answer belongs to by what both hold: an answer's expression names the
// callback that the request has passed. The protocol itself ties nothing together.
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
    // Takes the next record and its serial number. For an answer, the serial of the request that it
    // belongs to: the one that the record tells, or else, among the unanswered ones of the same
    // process, the one whose callback comes first in the answer; of several, the longest callback,
    // then the oldest request. Each request is answered once.
    std::optional<std::uint64_t> take(std::uint64_t serial, const MessageRecord& record);

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
