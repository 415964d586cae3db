// Checking and decoding of frames, and building them: the one framing code of extension and host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ipc/protocol.h"

namespace kestrel {

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};

// A whole frame, header and payload in one malloc block.
using Frame = std::unique_ptr<webkit_message, FreeDeleter>;

// The longest text of an integer item, its NUL included: "-2147483648".
inline constexpr std::size_t kMaxIntItem = 12;

inline char* payload_begin(webkit_message& frame) { return reinterpret_cast<char*>(&frame + 1); }

inline std::span<const char> payload_of(const webkit_message& frame) {
    return {reinterpret_cast<const char*>(&frame + 1),
            static_cast<std::size_t>(frame.total_len_of_string)};
}

// Header and payload as they go over the wire.
inline std::span<const char> bytes_of(const webkit_message& frame) {
    return {reinterpret_cast<const char*>(&frame),
            sizeof frame + static_cast<std::size_t>(frame.total_len_of_string)};
}

// What is said when a frame cannot be built.
inline constexpr std::string_view kFrameTooLong =
    "webkit_util::wrapMessage message is too long, not sent\n";
inline constexpr std::string_view kNoMemoryForFrame =
    "webkit_util::wrapMessage could not malloc, message not sent\n";

// Builds a frame. The strings must hold no NUL. Null, with a line on standard error, when the frame
// would be longer than kMaxFrame or memory is out. Any thread.
Frame build_frame(std::int32_t type, std::span<const int> ints,
                  std::span<const std::string_view> strings);

// The same of strings, each carried up to its first NUL.
Frame build_frame_of_strings(std::int32_t type, std::span<const int> ints,
                             std::span<const std::string> strings);

// A frame of the same bytes. The payload must be as long as the header says. Throws std::bad_alloc.
Frame copy_of(const webkit_message& frame);

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

// Whether the header's counts are possible at all: none is negative, and the payload has at least
// one byte an item. Call it before allocating anything by the counts.
bool counts_are_possible(const webkit_message& header);

// The value of an integer item as scanf's "%d" reads it, cut to its low 32 bits if it has more; 0
// for text that is no number.
int parse_int(std::string_view text);

struct Items {
    std::vector<int> ints;
    std::vector<std::string> strings;
};

// Takes a frame's payload apart. False, with unspecified items, when the counts are impossible or
// an item lacks its NUL; bytes behind the last item are ignored. The payload must be as long as the
// header says.
bool decode_items(const webkit_message& frame, Items& items);

// The same without copying: the strings are parts of the frame.
struct ItemViews {
    std::vector<int> ints;
    std::vector<std::string_view> strings;
};
bool decode_items(const webkit_message& frame, ItemViews& items);

}  // namespace kestrel
