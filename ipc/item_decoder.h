// Takes a payload apart while it is still coming: the copying is done when the last byte is there.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "ipc/frame.h"

namespace kestrel {

class ItemDecoder {
  public:
    // For the payload behind `header`. `items`, whose memory is made use of, must outlive it, and
    // has all the items once is_complete. Throws std::bad_alloc.
    ItemDecoder(const webkit_message& header, Items& items);

    // The payload's next bytes; those behind the last item are ignored. Throws std::bad_alloc.
    void take(std::span<const char> bytes);

    // Whether the header's counts are possible and all items have come, each with its NUL.
    bool is_complete() const { return is_possible_ && next_ == count_; }

  private:
    void end_item();

    Items& items_;
    bool is_possible_;
    std::size_t next_ = 0;  // of the items that have not ended
    std::size_t count_ = 0;
    std::string int_text_;
};

}  // namespace kestrel
