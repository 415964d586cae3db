// The items of a received payload.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ipc/frame.h"

namespace kestrel {

struct Items {
    std::vector<int> ints;
    std::vector<std::string> strings;
};

// Parts of the frame that they were decoded from.
struct ItemViews {
    std::vector<int> ints;
    std::vector<std::string_view> strings;
};

// Whether the header's counts are possible at all: none is negative, and the payload has at least
// one byte an item. Call it before allocating anything by the counts.
bool counts_are_possible(const webkit_message& header);

// The value of an integer item as scanf's "%d" reads it, cut to its low 32 bits if it has more; 0
// for text that is not a number.
int parse_int(std::string_view text);

// False, with unspecified items, when the counts are impossible or an item lacks its NUL; bytes
// behind the last item are ignored. The payload must be as long as the header says. Throws
// std::bad_alloc.
bool decode_items(const webkit_message& frame, ItemViews& items);
bool decode_items(const webkit_message& frame, Items& items);

}  // namespace kestrel
