// The rows of a message list: the messages of a log that match a filter. A paused view keeps
// showing a snapshot of the log.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

#include "workbench/wire/message_filter.h"
#include "workbench/wire/message_log.h"

namespace kestrel {

class MessageView {
  public:
    // The changes since the last update.
    struct Change {
        bool is_new_list = false;  // all rows have changed; the counts are 0
        std::size_t removed_first = 0;
        std::size_t added_last = 0;
    };

    // The log must outlive the view.
    explicit MessageView(const MessageLog& log) : log_(log) {}

    // Takes over the log's changes, unless paused.
    Change update();

    // Both rebuild the list at the next update.
    void set_filter(std::string_view text);
    void set_paused(bool is_paused);

    bool is_paused() const { return snapshot_.has_value(); }
    // The number of messages added since the view was paused.
    std::uint64_t waiting() const { return log_.next_serial() - end_; }

    // The serial numbers of the rows, in order.
    const std::deque<std::uint64_t>& serials() const { return serials_; }

    // A message of the log or snapshot, whether it matches or not; null if it was dropped.
    const LoggedMessage* find(std::uint64_t serial) const { return find_message(rows(), serial); }

  private:
    const LoggedMessages& rows() const { return snapshot_ ? *snapshot_ : log_.rows(); }
    std::size_t append_from(std::uint64_t serial);

    const MessageLog& log_;
    MessageFilter filter_;
    std::optional<LoggedMessages> snapshot_;
    std::deque<std::uint64_t> serials_;
    std::uint64_t end_ = 0;  // rows before this serial have been filtered
    bool is_new_list_ = true;
};

}  // namespace kestrel
