#pragma once

#include "tests/support/frame_bytes.h"
#include "tests/support/host_end.h"

namespace kestrel::testing {

// The host's end of a socket pair; the other end is webkit_client::server_fd during its lifetime.
class LinkPeer : public HostEnd {
  public:
    LinkPeer();
    ~LinkPeer();
};

}  // namespace kestrel::testing
