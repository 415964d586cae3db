#pragma once

#include <glib.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::testing {

struct ReceivedFrame {
    int type;
    std::string payload;  // items, each with its NUL
};

// The host's end of the link, one web process at a time: listens where the extension connects, and
// keeps what comes. Its sockets are served by the default main context.
class ScriptedHost {
  public:
    // Does not listen yet. `client_directory` must exist by then.
    explicit ScriptedHost(std::string client_directory);
    ~ScriptedHost();
    ScriptedHost(const ScriptedHost&) = delete;
    ScriptedHost& operator=(const ScriptedHost&) = delete;

    void listen();

    // Waits until `count` frames of `type` have come in all.
    bool wait_for(int type, std::size_t count = 1);

    // Waits until a frame of `type` has come whose only item is `text`.
    bool wait_for_text(int type, const std::string& text);

    // All frames of `type` so far.
    std::vector<ReceivedFrame> frames(int type) const;
    const std::vector<ReceivedFrame>& frames() const { return frames_; }

    // Forgets all frames so far but the announcements.
    void forget_frames() {
        std::erase_if(frames_, [](const ReceivedFrame& frame) { return frame.type != 61; });
    }

    void send(int type, std::initializer_list<std::string_view> strings) const;
    void send_bytes(std::string_view bytes) const;

    // Closes the connection and stops listening, as a host that dies.
    void hang_up();

    // Stops reading, or goes on.
    void pause();
    void resume();

  private:
    void accept_client();
    bool read_client();

    std::string path_;
    int listener_ = -1;
    int client_ = -1;
    guint listener_source_ = 0;
    guint client_source_ = 0;
    std::string unread_;
    std::vector<ReceivedFrame> frames_;
};

}  // namespace kestrel::testing
