// The latest messages, for the lists that show them. Bounded: the oldest are dropped first.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "workbench/wire/answer_pairing.h"
#include "workbench/wire/event_source.h"
#include "workbench/wire/message_record.h"

namespace kestrel {

// The other half of a request and its answer.
struct Partner {
    std::uint64_t serial;
    std::chrono::microseconds between;  // from the request to the answer
};

struct LoggedMessage {
    std::uint64_t serial;
    std::shared_ptr<const MessageRecord> record;
    std::optional<Partner> partner;
};

// Rows in order of their serial numbers, which have no gaps.
using LoggedMessages = std::deque<LoggedMessage>;

// The row with this serial number; null if it was dropped or does not exist yet.
const LoggedMessage* find_message(const LoggedMessages& rows, std::uint64_t serial);

// For the main thread only.
class MessageLog {
  public:
    struct Limits {
        std::size_t rows = 20'000;
        std::size_t bytes = std::size_t{64} << 20;  // of messages and notes
    };

    MessageLog() : MessageLog(Limits()) {}
    explicit MessageLog(Limits limits) : limits_(limits) {}

    // Adds a row and returns its serial number; the first is 1.
    std::uint64_t add(MessageRecord record);

    void clear();

    const LoggedMessages& rows() const { return rows_; }
    std::uint64_t next_serial() const { return next_serial_; }

    // Called from the default main context after changes, at most 30 times a second.
    void set_listener(std::function<void()> listener) { listener_ = std::move(listener); }

  private:
    void pair(LoggedMessage& answer);
    void drop_first();
    void schedule_notification();

    Limits limits_;
    LoggedMessages rows_;
    std::size_t bytes_ = 0;
    std::uint64_t next_serial_ = 1;
    AnswerPairing pairing_;
    std::function<void()> listener_;
    EventSource notification_;
};

}  // namespace kestrel
