// The link to the host: one stream socket, one detached reader thread, senders on any thread.
//
// Life of the descriptor: -1 until the reader thread has made the socket; then it stays the same
// number until deinitComm, even when connecting failed or the host has gone. There is no reconnect.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>

#include "ipc/protocol.h"

#pragma GCC visibility push(default)

class webkit_client {
  public:
    // Called with a message's integers and strings.
    using InboundHandler = void (*)(int*, std::string*);

    // Starts the link: stores the handler table (61 slots, indexed by message type, null where no
    // handler is; it must live as long as the process) and starts the detached reader thread.
    // Takes over `socket_path`, a malloc block. No path, or one over 107 bytes, is an error line,
    // and no link is started. Call it once.
    static void initComm(InboundHandler* handlers, char* socket_path);

    // The reader thread's body: connects (11 attempts, a second apart), announces the process with
    // type 61, then reads for ever. Takes over `socket_path`, a malloc block.
    static void* sinitComm(void* socket_path);

    // Reads and dispatches messages from server_fd until the host goes or breaks the protocol;
    // then ends the calling thread. Leaves server_fd as it is.
    [[noreturn]] static void recvMessage();

    // Decodes one message, payload behind its header, and calls the handler of its type with the
    // integers and the strings; the strings are followed by empty ones, at least one and up to
    // index 5. Both arrays die when the handler returns. A message whose items do not fit its
    // header, or that has no handler, is a log line and nothing else. The caller keeps the message.
    static void processMessage(webkit_message*& message);

    // Writes one message whole; messages of several threads never mix. While server_fd is -1 the
    // message is dropped with an error line. A write that fails or is short ends the process with
    // exit(-1); on a socket it raises no SIGPIPE. The caller keeps the message. Any thread; waits
    // while the host does not read.
    static void sendMessage(webkit_message*& message);

    // Closes the socket and sets server_fd to -1. Not while another thread sends.
    static void deinitComm();

    static int server_fd;
    static InboundHandler* func_array;

    // `mu` is held from before the socket is made until the announcement has been sent; then
    // `signal` is notified once.
    static std::mutex mu;
    static std::condition_variable signal;
};

#pragma GCC visibility pop
