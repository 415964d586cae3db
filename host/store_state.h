#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

// What the host keeps for the store page while the program runs.
class StoreState {
  public:
    explicit StoreState(std::string page_uri) : page_uri_(std::move(page_uri)) {}

    const std::string& page_uri() const { return page_uri_; }

    // The item stored under `key`, or null.
    const std::string* item(const std::string& key) const;
    void set_item(const std::string& key, std::string value) { items_[key] = std::move(value); }

    // The applications subscribed to, in the user's order.
    const std::vector<std::string>& subscriptions() const { return subscriptions_; }

    // Each is false if that changes nothing. A position behind the last one means the last one.
    bool subscribe(const std::string& id);
    bool unsubscribe(const std::string& id);
    bool move(const std::string& id, std::size_t position);

  private:
    std::string page_uri_;
    std::map<std::string, std::string> items_;
    std::vector<std::string> subscriptions_;
};

}  // namespace kestrel
