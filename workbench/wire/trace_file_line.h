#pragma once

#include <stdexcept>
#include <string_view>

#include "workbench/wire/message_record.h"

namespace kestrel {

// A line that tells nothing: malformed, impossible or foreign. The text says why.
class InvalidTraceFileLine : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// What a line of a trace tells, as docs/protocol.md describes it: a message, or a note. Throws
// InvalidTraceFileLine or std::bad_alloc.
//
// The frame is made of the items that the line tells. Items leave out what a frame may hold besides
// (bytes behind the last item, numbers in an odd spelling): the record is not exact then.
//
// A line may come from anywhere; it costs a small multiple of its own length of memory.
MessageRecord parse_trace_file_line(std::string_view line);

}  // namespace kestrel
