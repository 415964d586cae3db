#include "host/store_state.h"

#include <algorithm>

namespace kestrel {

const std::string* StoreState::item(const std::string& key) const {
    const auto found = items_.find(key);
    return found == items_.end() ? nullptr : &found->second;
}

bool StoreState::subscribe(const std::string& id) {
    if (std::ranges::find(subscriptions_, id) != subscriptions_.end()) return false;
    subscriptions_.push_back(id);
    return true;
}

bool StoreState::unsubscribe(const std::string& id) { return std::erase(subscriptions_, id) > 0; }

bool StoreState::move(const std::string& id, std::size_t position) {
    const auto from = std::ranges::find(subscriptions_, id);
    if (from == subscriptions_.end()) return false;
    const auto last = subscriptions_.size() - 1;
    const auto to = subscriptions_.begin() + static_cast<std::ptrdiff_t>(std::min(position, last));
    if (from < to) {
        std::rotate(from, from + 1, to + 1);
    } else {
        std::rotate(to, from, from + 1);
    }
    return from != to;
}

}  // namespace kestrel
