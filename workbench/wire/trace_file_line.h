#pragma once

#include <stdexcept>
#include <string_view>

#include "workbench/wire/message_record.h"

namespace kestrel {

// The line is malformed or not a trace line; the text says why.
class InvalidTraceFileLine : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The message or note in a line of a trace file, in the format of docs/protocol.md. Throws
// InvalidTraceFileLine or std::bad_alloc.
//
// The frame is rebuilt from the items in the line. The record is not exact if the original frame
// was longer (bytes after the last item, numbers with leading zeros).
//
// Lines are untrusted; parsing uses memory in proportion to their length.
MessageRecord parse_trace_file_line(std::string_view line);

}  // namespace kestrel
