#pragma once

#include <string>

#include "tests/support/frame_bytes.h"
#include "tests/support/host_end.h"

namespace kestrel::testing {

// The host's end of this process's link, which was started with KESTREL_TRACE set to `trace`, or
// without it if that is null; the announcement has been read. One a process. A message of type 1
// is answered with one of type 33 that has its strings [0] and [1].
class TracedLink : public HostEnd {
  public:
    explicit TracedLink(const char* trace);
};

}  // namespace kestrel::testing
