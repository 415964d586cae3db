// Ways in which a faulty host mishandles its answers, for testing how pages react.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ipc/frame.h"
#include "program/translation.h"

namespace kestrel {

enum class Misbehavior : std::uint8_t {
    none,
    late_answer,
    wrong_type,
    truncated,
    oversize,
    silence,
    hang_up
};

struct MisbehaviorRow {
    Misbehavior kind;
    const char* name;         // menu label
    const char* description;  // what the host does, and how the extension reacts
};

std::string_view name_of(Misbehavior kind);

inline constexpr std::chrono::seconds kLateness{5};

// Not in the protocol's tables, but in the range that the extension dispatches.
inline constexpr std::int32_t kWrongType = 59;

inline constexpr auto kMisbehaviors = std::to_array<MisbehaviorRow>({
    {Misbehavior::none, translatable("Behaves"), translatable("Every answer is sent at once.")},
    {Misbehavior::late_answer, translatable("Answers late"),
     translatable("Every answer comes five seconds late.")},
    {Misbehavior::wrong_type, translatable("Wrong type"),
     translatable("Answers are sent as messages of type 59, which does not exist: the extension "
                  "drops them.")},
    {Misbehavior::truncated, translatable("Truncated message"),
     translatable(
         "The next answer is cut off and nothing else is sent: the extension waits for the "
         "rest.")},
    {Misbehavior::oversize, translatable("Oversize"),
     translatable("The next answer is longer than the extension accepts: it stops reading.")},
    {Misbehavior::silence, translatable("Silence"), translatable("No answer is sent.")},
    {Misbehavior::hang_up, translatable("Hangs up"),
     translatable("The connection is closed instead of the next answer: the page's next call ends "
                  "its process.")},
});

// What is sent instead of an answer.
struct Outgoing {
    std::chrono::seconds delay{0};
    Frame frame;                // null: nothing is sent
    std::size_t size = 0;       // number of bytes of the frame to send
    bool falls_silent = false;  // nothing is sent on this connection afterwards
    bool hangs_up = false;      // the connection is closed afterwards
};

// Takes ownership of the answer. For a null frame, nothing is sent.
Outgoing misbehave(Misbehavior kind, Frame answer);

}  // namespace kestrel
