#include "ipc/outgoing_frame.h"

#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "base/error_line.h"
#include "ipc/webkit_client.h"

namespace kestrel {
namespace {

constexpr std::size_t kKeptBlock = sizeof(webkit_message) + OutgoingFrame::kCheapPayload;

// The block that is kept while nobody uses it. What of it has never been written to takes no
// memory. Never freed: threads may send until the process is gone.
constinit std::atomic<char*> kept_block = nullptr;

char* take_kept_block() {
    char* const block = kept_block.exchange(nullptr);
    return block != nullptr ? block : static_cast<char*>(std::malloc(kKeptBlock));
}

void give_block_back(char* block) { std::free(kept_block.exchange(block)); }

}  // namespace

OutgoingFrame::OutgoingFrame(std::int32_t type, std::size_t payload) {
    if (payload > kMaxFrame - sizeof(webkit_message)) {
        error_line(kFrameTooLong);
        return;
    }
    size_ = sizeof(webkit_message) + payload;
    char* const block = block_for(size_);
    if (block == nullptr) {
        error_line(kNoMemoryForFrame);
        return;
    }
    header_ = reinterpret_cast<webkit_message*>(block);
    *header_ = {type, 0, 0, 0};
    end_ = block + sizeof(webkit_message);
}

OutgoingFrame::~OutgoingFrame() {
    if (header_ == nullptr || size_ <= kShortFrame) return;
    if (size_ <= kKeptBlock) {
        give_block_back(reinterpret_cast<char*>(header_));
    } else {
        std::free(header_);
    }
}

char* OutgoingFrame::block_for(std::size_t size) {
    if (size <= kShortFrame) return short_frame_.data();
    if (size <= kKeptBlock) return take_kept_block();
    return static_cast<char*>(std::malloc(size));
}

void OutgoingFrame::add(int value) {
    end_ = std::to_chars(end_, end_ + kMaxIntItem, value).ptr;
    *end_++ = '\0';
    ++header_->num_of_ints;
}

void OutgoingFrame::add(std::string_view text) {
    if (!text.empty()) std::memcpy(end_, text.data(), text.size());
    end_string(end_ + text.size());
}

void OutgoingFrame::end_string(char* end) {
    *end = '\0';
    end_ = end + 1;
    ++header_->num_of_strings;
}

void OutgoingFrame::send() {
    header_->total_len_of_string = static_cast<std::int32_t>(end_ - payload_begin(*header_));
    webkit_client::sendMessage(header_);
}

}  // namespace kestrel
