// What a list of messages shows: those of a log that a filter lets pass, or of the moment at which
// the list was stopped.
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
    // What happened to the rows since the last update.
    struct Change {
        bool is_new_list = false;  // everything; the counts say nothing then
        std::size_t gone_first = 0;
        std::size_t added_last = 0;
    };

    // The log must outlive the view.
    explicit MessageView(const MessageLog& log) : log_(log) {}

    // Follows the log. Nothing changes while the view is stopped.
    Change update();

    // Each makes a new list at the next update.
    void set_filter(std::string_view text);
    void set_paused(bool is_paused);

    bool is_paused() const { return stopped_.has_value(); }
    // Messages that have come since the view was stopped.
    std::uint64_t waiting() const { return log_.next_serial() - end_; }

    // The serial numbers of the rows, in their order.
    const std::deque<std::uint64_t>& serials() const { return serials_; }

    // A message that the view knows, shown or not; null if it is gone.
    const LoggedMessage* find(std::uint64_t serial) const { return find_message(rows(), serial); }

  private:
    const LoggedMessages& rows() const { return stopped_ ? *stopped_ : log_.rows(); }
    std::size_t append_from(std::uint64_t serial);

    const MessageLog& log_;
    MessageFilter filter_;
    std::optional<LoggedMessages> stopped_;
    std::deque<std::uint64_t> serials_;
    std::uint64_t end_ = 0;  // everything before has been looked at
    bool is_new_list_ = true;
};

}  // namespace kestrel
