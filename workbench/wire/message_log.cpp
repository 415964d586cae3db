#include "workbench/wire/message_log.h"

#include <utility>

#include "ipc/frame.h"

namespace kestrel {
namespace {

constexpr std::chrono::milliseconds kNotificationInterval{33};

// The memory that is used; the size in a trace file may be wrong.
std::size_t bytes_of_row(const MessageRecord& record) {
    return (record.frame ? bytes_of(*record.frame).size() : 0) + record.note.size();
}

}  // namespace

const LoggedMessage* find_message(const LoggedMessages& rows, std::uint64_t serial) {
    if (rows.empty() || serial < rows.front().serial || serial > rows.back().serial) return nullptr;
    return &rows[serial - rows.front().serial];
}

std::uint64_t MessageLog::add(MessageRecord record) {
    const std::uint64_t serial = next_serial_++;
    bytes_ += bytes_of_row(record);
    rows_.push_back(
        {serial, std::make_shared<const MessageRecord>(std::move(record)), std::nullopt});
    pair(rows_.back());
    while (rows_.size() > limits_.rows || (bytes_ > limits_.bytes && rows_.size() > 1)) {
        drop_first();
    }
    schedule_notification();
    return serial;
}

void MessageLog::clear() {
    rows_.clear();
    bytes_ = 0;
    pairing_.clear();
    schedule_notification();
}

void MessageLog::pair(LoggedMessage& answer) {
    const std::optional<std::uint64_t> serial = pairing_.add(answer.serial, *answer.record);
    if (!serial || *serial >= answer.serial || *serial < rows_.front().serial) return;
    LoggedMessage& request = rows_[*serial - rows_.front().serial];
    const auto between = std::chrono::duration_cast<std::chrono::microseconds>(
        answer.record->time - request.record->time);
    answer.partner = {request.serial, between};
    request.partner = {answer.serial, between};
}

void MessageLog::drop_first() {
    bytes_ -= bytes_of_row(*rows_.front().record);
    rows_.pop_front();
}

void MessageLog::schedule_notification() {
    if (notification_.is_active()) return;
    notification_ = EventSource::every(kNotificationInterval, [this] {
        notification_.remove();
        if (listener_) listener_();
    });
}

}  // namespace kestrel
