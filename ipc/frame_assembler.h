// Incremental frame parser for non-blocking sockets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "ipc/frame.h"

namespace kestrel {

struct FrameLimits {
    std::int32_t payload;  // bytes
    std::int32_t items;    // integers and strings together
};

class FrameAssembler {
  public:
    // A frame over the limits is rejected before anything is allocated for it.
    explicit FrameAssembler(FrameLimits limits) : limits_(limits) {}

    // Consumes bytes from the front of `bytes`: up to the end of the current frame, which is
    // returned, or all of them if they do not complete it. After a fault it returns null and
    // consumes nothing.
    Frame next(std::span<const char>& bytes);

    // Why the stream cannot be parsed any further: an impossible header, or one over the limits. ""
    // while there is no fault; permanent.
    std::string_view fault() const { return fault_; }

    // Whether part of a frame has been consumed.
    bool is_inside_frame() const { return taken_ > 0; }

  private:
    // Moves bytes from `bytes` to the block at `to`; true when that is full.
    bool fill(char* to, std::size_t size, std::span<const char>& bytes);
    std::string_view fault_of(const webkit_message& header) const;
    void begin_payload();

    FrameLimits limits_;
    std::string_view fault_;
    webkit_message header_{};
    Frame frame_;            // null while the header is being read
    std::size_t taken_ = 0;  // of the frame, header included
};

}  // namespace kestrel
