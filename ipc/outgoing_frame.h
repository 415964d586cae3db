// A frame that is made where it is sent from: its items are written straight behind its header.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "ipc/frame.h"

namespace kestrel {

// First all integers, then all strings, then send. Short frames are made on the stack, the next
// larger ones in a block that is kept from frame to frame.
class OutgoingFrame {
  public:
    // Up to this many bytes of payload cost no more memory than they fill.
    static constexpr std::size_t kCheapPayload = 4UL * 1024 * 1024;

    // Makes room for `payload` bytes of items, NULs included. Without it, when the frame would be
    // longer than kMaxFrame or memory is out, there is a line on standard error, and is_open is
    // false: nothing may be added or sent then.
    OutgoingFrame(std::int32_t type, std::size_t payload);
    ~OutgoingFrame();
    OutgoingFrame(const OutgoingFrame&) = delete;
    OutgoingFrame& operator=(const OutgoingFrame&) = delete;

    bool is_open() const { return header_ != nullptr; }

    void add(int value);
    void add(std::string_view text);

    // Where the next string's text goes; it is added by end_string, and holds no NUL.
    char* begin_string() { return end_; }
    void end_string(char* end);

    // As webkit_client::sendMessage.
    void send();

  private:
    static constexpr std::size_t kShortFrame = 512;

    char* block_for(std::size_t size);

    webkit_message* header_ = nullptr;
    char* end_ = nullptr;
    std::size_t size_ = 0;  // of the block
    alignas(webkit_message) std::array<char, kShortFrame> short_frame_;
};

}  // namespace kestrel
