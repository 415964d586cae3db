#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "base/file_descriptor.h"
#include "workbench/wire/message_record.h"

namespace kestrel {

// A trace file, written by KESTREL_TRACE=FILE or as a transcript of the workbench. It is read in
// pieces, so that the window stays responsive.
class TraceFile {
  public:
    using Receiver = std::function<void(MessageRecord)>;

    // Throws std::system_error unless `path` is a readable regular file.
    explicit TraceFile(const std::string& path);

    // Reads at most 256 KiB and passes on a record for each line; an invalid line becomes a note
    // with its number. False at the end of the file and after a read error, which becomes a note
    // too.
    bool read_piece(const Receiver& receive);

  private:
    void add_line(std::string_view line, const Receiver& receive);
    void add_bytes(std::string_view bytes, const Receiver& receive);
    void finish(const Receiver& receive);
    void note(std::string_view text, const Receiver& receive) const;

    FileDescriptor file_;
    std::string unfinished_;  // the beginning of a line
    bool is_too_long_ = false;
    std::size_t line_number_ = 0;
    std::chrono::system_clock::time_point last_time_;
};

}  // namespace kestrel
