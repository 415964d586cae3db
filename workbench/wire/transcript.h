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

// Writes down what goes over the wire: for people on `out`, each line with its time, and for
// programs in a file if one is given.
class Transcript {
  public:
    explicit Transcript(std::ostream& out) : out_(out) {}

    // Keeps everything in this file from now on, as lines of JSON like those of KESTREL_TRACE=FILE;
    // docs/protocol.md describes them. Lines reach the file together, when the main loop has
    // nothing else to do and at the end of the transcript. False when the file cannot be written.
    bool copy_to(const std::string& path);

    // Returns the message's serial number in the log, 0 without one. `answer_to` is the serial of
    // the request that it answers, or 0.
    std::uint64_t message(Direction direction, int pid, const webkit_message& message,
                          std::uint64_t answer_to = 0);

    // Puts everything into this log as well, from now on; null for none. It must outlive its use.
    void log_to(MessageLog* log) { log_ = log; }

    // Something that is not a message: "--" stands where the direction would.
    void note(std::string_view text);

    // Told every note after it has been written.
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
