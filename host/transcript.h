#pragma once

#include <fstream>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "ipc/message_text.h"

namespace kestrel {

// Writes down what goes over the wire, each line with its time, on `out` and in a file if one is
// given.
class Transcript {
  public:
    explicit Transcript(std::ostream& out) : out_(out) {}

    // Keeps a copy in this file from now on. False when it cannot be written.
    bool copy_to(const std::string& path);

    void message(Direction direction, int pid, const webkit_message& message);

    // Something that is not a message: "--" stands where the direction would.
    void note(std::string_view text);

    // Told every line, without its time, after it has been written.
    void set_listener(std::function<void(const std::string&)> listener);

  private:
    void write(const std::string& line);

    std::ostream& out_;
    std::ofstream copy_;
    std::function<void(const std::string&)> listener_;
};

}  // namespace kestrel
