// One web process's connection. Reading and writing happen in the default main context and never
// wait: what the peer does not take yet is queued.
//
// A connection ends in one place only, when reading finds the end of the stream or a fault in it.
// Whatever else makes it useless shuts the socket down, and reading then finds the end.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

#include "host/event_source.h"
#include "ipc/frame_assembler.h"
#include "log/file_descriptor.h"

namespace kestrel {

// Pages send what their users type and pick, six items at most; much more is a mistake.
inline constexpr FrameLimits kLimitsFromPage{.payload = 64 << 20, .items = 64};

// A web process that stops reading while it goes on asking must not fill our memory.
inline constexpr std::size_t kMaxQueuedBytes = std::size_t{64} << 20;

class Connection;

class MessageReceiver {
  public:
    // A whole message has come. The connection must outlive the call.
    virtual void on_message(Connection& connection, const webkit_message& message) = 0;

    // The last call about a connection, which may be destroyed in it.
    virtual void on_end(Connection& connection, std::string_view why) = 0;

  protected:
    ~MessageReceiver() = default;
};

class Connection {
  public:
    Connection(FileDescriptor socket, MessageReceiver& receiver);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Sends the frame after those sent before. Frames for a peer that has gone are dropped.
    void send(Frame frame);

    // The process id that the peer announced; 0 until it has.
    int pid() const { return pid_; }
    void set_pid(int pid) { pid_ = pid; }

  private:
    void read();
    void write_queued();
    void give_up(std::string why);
    std::string end_reason(ssize_t result, int error) const;

    FileDescriptor socket_;
    MessageReceiver& receiver_;
    FrameAssembler assembler_{kLimitsFromPage};
    std::deque<Frame> queue_;
    std::size_t queued_bytes_ = 0;
    std::size_t written_of_first_ = 0;
    int pid_ = 0;
    std::string given_up_;  // why, or "" while the connection is of use
    EventSource readable_;
    EventSource writable_;
};

}  // namespace kestrel
