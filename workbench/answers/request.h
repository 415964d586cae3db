#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "ipc/items.h"

namespace kestrel {

// The items of a message from the page. Missing items are 0 and "".
class Request {
  public:
    explicit Request(Items items) : items_(std::move(items)) {}

    int number(std::size_t index) const {
        return index < items_.ints.size() ? items_.ints[index] : 0;
    }
    const std::string& text(std::size_t index) const {
        static const std::string none;
        return index < items_.strings.size() ? items_.strings[index] : none;
    }

  private:
    Items items_;
};

}  // namespace kestrel
