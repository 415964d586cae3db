#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ipc/frame.h"

namespace kestrel {

// The longest text of an integer item, its NUL included: "-2147483648".
inline constexpr std::size_t kMaxIntItem = 12;

// The length of a payload, item by item.
class PayloadLength {
  public:
    // Without the item's NUL.
    void add(std::size_t text_length);

    // Nothing when header and payload together would exceed kMaxFrame.
    std::optional<std::size_t> total() const;

  private:
    std::size_t total_ = 0;
    bool fits_ = true;
};

// Builds a frame in its block: first all integers, then all strings.
class FrameBuilder {
  public:
    // Reserves `payload` bytes for the items, NULs included. If `payload` is nothing or too long,
    // or memory is out, there is a line on standard error, and is_open is false: nothing may be
    // added then. Any thread.
    FrameBuilder(std::int32_t type, std::optional<std::size_t> payload);

    bool is_open() const { return frame_ != nullptr; }

    void add(int value);
    void add(std::string_view text);  // without NUL

    // Where to write the next string, which end_string adds; it holds no NUL.
    char* begin_string() { return end_; }
    void end_string(char* end);

    // The frame; null if the builder is not open.
    Frame finish();

  private:
    void append(std::string_view text);

    Frame frame_;
    char* end_ = nullptr;
};

// Builds a frame. The strings must hold no NUL. Null, with a line on standard error, when the frame
// would be longer than kMaxFrame or memory is out. Any thread.
Frame build_frame(std::int32_t type, std::span<const int> ints,
                  std::span<const std::string_view> strings);

// The same with strings that are each carried up to their first NUL.
Frame build_frame_of_strings(std::int32_t type, std::span<const int> ints,
                             std::span<const std::string> strings);

// A frame of the same bytes. The payload must be as long as the header says. Throws std::bad_alloc.
Frame copy_of(const webkit_message& frame);

}  // namespace kestrel
