// What the link logs when it starts, when no host answers, and when its host hangs up.
#pragma once

#include "log/zynlog.h"
#include "tests/support/log_recorder.h"

namespace kestrel::testing {

inline const LogLine kStarted{kLogWebkit, kInfo, "+"};
inline const LogLine kGaveUp{kLogWebkit, kError, "Connection error with webkit_server"};
inline const LogLine kHostClosed{kLogWebkit, kError,
                                 "Host closed the connection, exiting thread\n"};

}  // namespace kestrel::testing
