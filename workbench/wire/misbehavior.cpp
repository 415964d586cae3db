#include "workbench/wire/misbehavior.h"

#include <algorithm>
#include <string>
#include <utility>

#include "ipc/frame_builder.h"

namespace kestrel {
namespace {

static_assert(find_type(kToPage, kWrongType) == nullptr);

Outgoing whole(Frame frame) {
    const std::size_t size = frame ? bytes_of(*frame).size() : 0;
    return {.frame = std::move(frame), .size = size};
}

// One byte longer than the extension accepts.
Frame oversize_frame() {
    const std::string text(std::size_t{kMaxInboundPayload}, ' ');
    return build_frame(to_page("answer"), {}, std::array<std::string_view, 1>{text});
}

// All of the header and half of the payload.
Outgoing truncated(Frame frame) {
    const std::size_t size = sizeof(webkit_message) + payload_of(*frame).size() / 2;
    return {.frame = std::move(frame), .size = size, .falls_silent = true};
}

}  // namespace

std::string_view name_of(Misbehavior kind) {
    return std::ranges::find(kMisbehaviors, kind, &MisbehaviorRow::kind)->name;
}

Outgoing misbehave(Misbehavior kind, Frame answer) {
    if (!answer) return {};
    Outgoing outgoing;
    switch (kind) {
        case Misbehavior::none:
            return whole(std::move(answer));
        case Misbehavior::late_answer:
            outgoing = whole(std::move(answer));
            outgoing.delay = kLateness;
            return outgoing;
        case Misbehavior::wrong_type:
            answer->msg_type = kWrongType;
            return whole(std::move(answer));
        case Misbehavior::truncated:
            return truncated(std::move(answer));
        case Misbehavior::oversize:
            return whole(oversize_frame());
        case Misbehavior::silence:
            return outgoing;
        case Misbehavior::hang_up:
            outgoing.hangs_up = true;
            return outgoing;
    }
    return outgoing;
}

}  // namespace kestrel
