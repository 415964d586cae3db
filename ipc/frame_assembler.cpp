#include "ipc/frame_assembler.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "ipc/items.h"

namespace kestrel {

Frame FrameAssembler::next(std::span<const char>& bytes) {
    if (!fault_.empty()) return nullptr;
    if (!frame_) {
        if (!fill(reinterpret_cast<char*>(&header_), sizeof header_, bytes)) return nullptr;
        begin_payload();
        if (!frame_) return nullptr;
    }
    const std::size_t size = bytes_of(*frame_).size();
    if (!fill(reinterpret_cast<char*>(frame_.get()), size, bytes)) return nullptr;
    taken_ = 0;
    return std::exchange(frame_, nullptr);
}

bool FrameAssembler::fill(char* to, std::size_t size, std::span<const char>& bytes) {
    const std::size_t count = std::min(size - taken_, bytes.size());
    if (count > 0) std::memcpy(to + taken_, bytes.data(), count);
    taken_ += count;
    bytes = bytes.subspan(count);
    return taken_ == size;
}

std::string_view FrameAssembler::fault_of(const webkit_message& header) const {
    if (header.total_len_of_string < 0) return "a payload length below zero";
    if (header.total_len_of_string > limits_.payload) return "a payload over the limit";
    if (!counts_are_possible(header)) return "item counts that its payload cannot hold";
    if (header.num_of_ints + header.num_of_strings > limits_.items) return "too many items";
    return "";
}

void FrameAssembler::begin_payload() {
    fault_ = fault_of(header_);
    if (!fault_.empty()) return;
    const std::size_t size = bytes_of(header_).size();
    frame_.reset(static_cast<webkit_message*>(std::malloc(size)));
    if (frame_) {
        *frame_ = header_;
    } else {
        fault_ = "a payload that there is no memory for";
    }
}

}  // namespace kestrel
