#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "base/file_descriptor.h"
#include "workbench/wire/message_record.h"

namespace kestrel {

// A file of trace lines, read piece by piece so that a window can go on meanwhile: from
// KESTREL_TRACE=FILE, or a transcript of the workbench.
class TraceFile {
  public:
    using Receiver = std::function<void(MessageRecord)>;

    // Throws std::system_error if there is no regular file that can be read.
    explicit TraceFile(const std::string& path);

    // Reads about a quarter of a mebibyte and hands over what its lines tell; a line that tells
    // nothing becomes a note with its number. False when the end has been reached, or reading has
    // failed, which is a note, too.
    bool read_piece(const Receiver& receive);

  private:
    void take_line(std::string_view line, const Receiver& receive);
    void take(std::string_view bytes, const Receiver& receive);
    void finish(const Receiver& receive);
    void note(std::string_view text, const Receiver& receive) const;

    FileDescriptor file_;
    std::string unfinished_;  // the beginning of a line
    bool is_too_long_ = false;
    std::size_t line_number_ = 0;
    std::chrono::system_clock::time_point last_time_;
};

}  // namespace kestrel
