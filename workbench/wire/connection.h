// The connection of one web process. Reads and writes in the default main context, without
// blocking: data that the peer does not accept yet is queued.
//
// A connection ends in one place only, when read() finds the end of the stream or a fault in it.
// Any other failure shuts the socket down, so that read() finds the end.
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

// Page functions send at most six items of moderate size.
inline constexpr FrameLimits kLimitsFromPage{.payload = 64 << 20, .items = 64};

// Limits the memory for a web process that sends requests but does not read the answers.
inline constexpr std::size_t kMaxQueuedBytes = std::size_t{64} << 20;

class Connection;

class MessageReceiver {
  public:
    // Called for each complete message. Must not destroy the connection.
    virtual void on_message(Connection& connection, const webkit_message& message) = 0;

    // The last call for a connection. May destroy it.
    virtual void on_end(Connection& connection, std::string_view why) = 0;

  protected:
    ~MessageReceiver() = default;
};

class Connection {
  public:
    Connection(FileDescriptor socket, MessageReceiver& receiver);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Queues the frame. Frames for a disconnected peer are dropped.
    void send(Frame frame);

    // Sends the first `size` bytes of the frame and nothing afterwards.
    void send_beginning(Frame frame, std::size_t size);

    void hang_up() { shut_down("hung up on"); }

    // The process id that the peer announced; 0 before.
    int pid() const { return pid_; }
    void set_pid(int pid) { pid_ = pid; }

    // Expires with the connection; for callbacks that may run later.
    std::weak_ptr<const void> lifetime() const { return lifetime_; }

  private:
    struct Queued {
        Frame frame;
        std::size_t size;  // number of bytes to send
    };

    void queue(Frame frame, std::size_t size);
    void read();
    void write_queued();
    void shut_down(std::string why);
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
    std::string shutdown_reason_;  // "" while the connection is usable
    EventSource readable_;
    EventSource writable_;
};

}  // namespace kestrel
