#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel::testing {

// The host's end of a connected socket pair, whose other end is webkit_client::server_fd for its
// lifetime. Reading waits five seconds at most and then gives what there is.
class LinkPeer {
  public:
    LinkPeer();
    ~LinkPeer();
    LinkPeer(const LinkPeer&) = delete;
    LinkPeer& operator=(const LinkPeer&) = delete;

    // Exactly `size` bytes, fewer only if they do not come.
    std::string read(std::size_t size) const;

    // One frame: header and the payload that it announces.
    std::string read_frame() const;

    // Whether nothing waits to be read.
    bool is_quiet() const;

    void write(std::string_view bytes) const;
    void hang_up();

    int fd() const { return fd_; }

  private:
    int fd_;
};

// The bytes of a frame, spelled out independently of the code under test. Integers are given as
// their texts; each item's NUL is added.
std::string frame_bytes(int type, std::initializer_list<std::string_view> ints,
                        std::initializer_list<std::string_view> strings);

}  // namespace kestrel::testing
