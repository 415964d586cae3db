#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "trace/frame_text.h"
#include "workbench/wire/event_source.h"
#include "workbench/wire/message_log.h"

namespace kestrel {

// Records all messages: as text lines with a time on `out`, and as JSON lines in a file if one is
// set.
class Transcript {
  public:
    explicit Transcript(std::ostream& out) : out_(out) {}

    // Also writes to this file from now on, in the JSON format of KESTREL_TRACE=FILE, which
    // docs/protocol.md describes. The file is flushed when the main loop is idle, and by the
    // destructor. False if the file cannot be written.
    bool copy_to(const std::string& path);

    // Returns the message's serial number in the log, 0 without a log. `answer_to` is the serial
    // number of the request, or 0.
    std::uint64_t message(Direction direction, int pid, const webkit_message& message,
                          std::uint64_t answer_to = 0);

    // Also adds everything to this log from now on; null for none.
    void log_to(MessageLog* log) { log_ = log; }

    // A line that is not a message: it has "--" instead of the direction.
    void note(std::string_view text);

    // Called with each note after it has been written.
    void set_note_listener(std::function<void(const std::string&)> listener);

  private:
    void write(const std::string& line);
    void copy(const std::string& json);
    void flush_copy();

    std::ostream& out_;
    MessageLog* log_ = nullptr;
    std::ofstream copy_;
    std::string copy_path_;
    EventSource flushing_;
    std::function<void(const std::string&)> note_listener_;
};

}  // namespace kestrel
