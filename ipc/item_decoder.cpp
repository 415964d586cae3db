#include "ipc/item_decoder.h"

#include <cstring>

namespace kestrel {

ItemDecoder::ItemDecoder(const webkit_message& header, Items& items)
    : items_(items), is_possible_(counts_are_possible(header)) {
    if (!is_possible_) return;
    items_.ints.resize(static_cast<std::size_t>(header.num_of_ints));
    items_.strings.resize(static_cast<std::size_t>(header.num_of_strings));
    for (std::string& text : items_.strings) text.clear();
    count_ = items_.ints.size() + items_.strings.size();
}

void ItemDecoder::take(std::span<const char> bytes) {
    while (!bytes.empty() && next_ < count_) {
        const bool is_int = next_ < items_.ints.size();
        std::string& text = is_int ? int_text_ : items_.strings[next_ - items_.ints.size()];
        const void* const nul = std::memchr(bytes.data(), '\0', bytes.size());
        if (nul == nullptr) {
            text.append(bytes.data(), bytes.size());
            return;
        }
        const auto length = static_cast<std::size_t>(static_cast<const char*>(nul) - bytes.data());
        text.append(bytes.data(), length);
        end_item();
        bytes = bytes.subspan(length + 1);
    }
}

void ItemDecoder::end_item() {
    if (next_ < items_.ints.size()) {
        items_.ints[next_] = parse_int(int_text_);
        int_text_.clear();
    }
    ++next_;
}

}  // namespace kestrel
