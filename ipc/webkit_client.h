// The link to the host: one stream socket, one detached reader thread, senders on any thread.
//
// server_fd is -1 until the reader thread has created the socket; then it keeps its number until
// deinitComm, even if connecting failed or the host has gone. There is no reconnect.
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
    // Takes ownership of `socket_path`, a malloc block. Without a path, or with one over 107 bytes,
    // it writes an error line and starts no link. Call it once.
    static void initComm(InboundHandler* handlers, char* socket_path);

    // The reader thread's body: connects (11 attempts, a second apart), announces the process with
    // type 61, then reads. Takes ownership of `socket_path`, a malloc block.
    static void* sinitComm(void* socket_path);

    // Reads and dispatches messages from server_fd until the host goes or breaks the protocol;
    // then ends the calling thread. Does not change server_fd.
    [[noreturn]] static void recvMessage();

    // Decodes one message, header and payload in one block, and calls the handler of its type with
    // the integers and the strings; empty strings follow, at least one and up to index 5. Both
    // arrays are freed when the handler returns. A message whose items do not fit its header, or
    // that has no handler, is dropped with a log line. The caller keeps the message.
    static void processMessage(webkit_message*& message);

    // Writes one message; messages of several threads do not interleave. While server_fd is -1 the
    // message is dropped with an error line. A write that fails or is short ends the process with
    // exit(-1); on a socket it raises no SIGPIPE. The caller keeps the message. Any thread; blocks
    // while the socket is full.
    static void sendMessage(webkit_message*& message);

    // Closes the socket and sets server_fd to -1. Not while another thread sends.
    static void deinitComm();

    static int server_fd;
    static InboundHandler* func_array;

    // `mu` is held from before the socket is created until the announcement has been sent; then
    // `signal` is notified once.
    static std::mutex mu;
    static std::condition_variable signal;
};

#pragma GCC visibility pop
