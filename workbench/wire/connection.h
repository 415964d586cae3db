// One web process's connection. Reading and writing happen in the default main context and never
// wait: what the peer does not take yet is queued.
//
// A connection ends in one place only, when reading finds the end of the stream or a fault in it.
// Whatever else makes it useless shuts the socket down, and reading then finds the end.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "base/file_descriptor.h"
#include "ipc/frame_assembler.h"
#include "workbench/wire/event_source.h"

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

    // Sends the first `size` bytes of the frame, and nothing that comes later.
    void send_beginning(Frame frame, std::size_t size);

    void hang_up() { give_up("hung up on"); }

    // The process id that the peer announced; 0 until it has.
    int pid() const { return pid_; }
    void set_pid(int pid) { pid_ = pid; }

    // Expires with the connection, for those who may come back to it later.
    std::weak_ptr<const void> lifetime() const { return lifetime_; }

  private:
    struct Queued {
        Frame frame;
        std::size_t size;  // so many bytes of it are sent
    };

    void queue(Frame frame, std::size_t size);
    void read();
    void write_queued();
    void give_up(std::string why);
    std::string end_reason(ssize_t result, int error) const;

    FileDescriptor socket_;
    MessageReceiver& receiver_;
    FrameAssembler assembler_{kLimitsFromPage};
    std::deque<Queued> queue_;
    std::size_t queued_bytes_ = 0;
    std::size_t written_of_first_ = 0;
    bool is_silent_ = false;
    int pid_ = 0;
    std::shared_ptr<const void> lifetime_ = std::make_shared<char>();
    std::string given_up_;  // why, or "" while the connection is of use
    EventSource readable_;
    EventSource writable_;
};

}  // namespace kestrel
