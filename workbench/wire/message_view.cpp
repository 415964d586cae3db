#include "workbench/wire/message_view.h"

#include <algorithm>
#include <utility>

namespace kestrel {

MessageView::Change MessageView::update() {
    Change change{.is_new_list = std::exchange(is_new_list_, false)};
    if (change.is_new_list) {
        serials_.clear();
        append_from(0);
        return change;
    }
    if (snapshot_) return change;
    const std::uint64_t first = rows().empty() ? log_.next_serial() : rows().front().serial;
    while (!serials_.empty() && serials_.front() < first) {
        serials_.pop_front();
        ++change.removed_first;
    }
    change.added_last = append_from(end_);
    return change;
}

void MessageView::set_filter(std::string_view text) {
    filter_ = MessageFilter(text);
    is_new_list_ = true;
}

void MessageView::set_paused(bool is_paused) {
    if (is_paused == snapshot_.has_value()) return;
    if (is_paused) {
        snapshot_ = log_.rows();
        end_ = log_.next_serial();
    } else {
        snapshot_.reset();
    }
    is_new_list_ = true;
}

std::size_t MessageView::append_from(std::uint64_t serial) {
    const std::size_t before = serials_.size();
    const LoggedMessages& all = rows();
    if (!all.empty() && serial <= all.back().serial) {
        const std::uint64_t first = std::max(serial, all.front().serial) - all.front().serial;
        for (auto row = all.begin() + static_cast<std::ptrdiff_t>(first); row != all.end(); ++row) {
            if (filter_.matches(*row->record)) serials_.push_back(row->serial);
        }
    }
    if (!snapshot_) end_ = log_.next_serial();
    return serials_.size() - before;
}

}  // namespace kestrel
