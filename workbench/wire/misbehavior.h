// What a bad host does with the answers that it should send, so that authors see how their pages
// cope.
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
    const char* name;         // in a menu
    const char* description;  // what the host does, and what the extension makes of it
};

std::string_view name_of(Misbehavior kind);

inline constexpr std::chrono::seconds kLateness{5};

// Unknown to every table of the protocol, and one that the extension has room for.
inline constexpr std::int32_t kWrongType = 59;

inline constexpr auto kMisbehaviors = std::to_array<MisbehaviorRow>({
    {Misbehavior::none, translatable("Behaves"), translatable("Every answer is sent at once.")},
    {Misbehavior::late_answer, translatable("Answers late"),
     translatable("Every answer comes five seconds late.")},
    {Misbehavior::wrong_type, translatable("Wrong type"),
     translatable(
         "Answers go out as messages of type 59, which nobody handles: the extension drops them.")},
    {Misbehavior::truncated, translatable("Truncated message"),
     translatable("The next answer promises more than follows, and then nothing comes any more: "
                  "the extension waits for the rest.")},
    {Misbehavior::oversize, translatable("Oversize"),
     translatable("The next answer is longer than the extension takes: it reads no more.")},
    {Misbehavior::silence, translatable("Silence"), translatable("No answer is sent.")},
    {Misbehavior::hang_up, translatable("Hangs up"),
     translatable("Instead of the next answer the connection is closed: the page's next call ends "
                  "its process.")},
});

// What goes out in an answer's place.
struct Outgoing {
    std::chrono::seconds delay{0};
    Frame frame;                // null: nothing is sent
    std::size_t size = 0;       // of the frame, or of its beginning if falls_silent
    bool falls_silent = false;  // nothing more is sent on this connection then
    bool hangs_up = false;      // the connection is closed then
};

// Takes the answer. Null frames, for which there is nothing to do, stay null.
Outgoing misbehave(Misbehavior kind, Frame answer);

}  // namespace kestrel
