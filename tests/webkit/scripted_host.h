#pragma once

#include <glib.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"

namespace kestrel::testing {

// A host in the test program: listens where the extension connects, serves one web process at a
// time in the default main context and records its frames.
class ScriptedHost {
  public:
    // Does not listen yet. `client_directory` must exist by then.
    explicit ScriptedHost(std::string client_directory);
    ~ScriptedHost() { hang_up(); }
    ScriptedHost(const ScriptedHost&) = delete;
    ScriptedHost& operator=(const ScriptedHost&) = delete;

    void listen();

    // Waits until `count` frames of `type` have been received.
    bool wait_for(int type, std::size_t count = 1);

    // Waits for a frame of `type` whose only item is `text`.
    bool wait_for_text(int type, const std::string& text);

    // All frames of `type` so far.
    std::vector<ReceivedFrame> frames(int type) const;
    const std::vector<ReceivedFrame>& frames() const { return frames_; }

    // Forgets all frames but the announcements.
    void forget_frames() {
        std::erase_if(frames_, [](const ReceivedFrame& frame) { return frame.type != 61; });
    }

    void send(int type, std::initializer_list<std::string_view> strings) const;
    void send_bytes(std::string_view bytes) const;

    // Closes the connection and stops listening, as a host that ends.
    void hang_up();

    // Stops or continues reading.
    void pause();
    void resume();

  private:
    void accept_client();
    bool read_client();

    std::string path_;
    std::optional<ListeningHost> listener_;
    std::optional<HostEnd> client_;
    guint listener_source_ = 0;
    guint client_source_ = 0;
    std::string unread_;
    std::vector<ReceivedFrame> frames_;
};

}  // namespace kestrel::testing
