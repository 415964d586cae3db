// Log lines of the link when it starts, when no host answers, and when reading ends.
#pragma once

#include <string>

#include "log/zynlog.h"
#include "tests/support/log_recorder.h"

namespace kestrel::testing {

inline const LogLine kStarted{kLogWebkit, kInfo, "+"};
inline const LogLine kGaveUp{kLogWebkit, kError, "Connection error with webkit_server"};
inline const LogLine kHostClosed{kLogWebkit, kError,
                                 "Host closed the connection, exiting thread\n"};

// Read errors: the line in the log and the text on standard error.
inline LogLine bad_header_line(const std::string& reason) {
    return {kLogWebkit, kFatal, "Error in reading first four ints: " + reason + "\n"};
}
inline std::string bad_header_text(const std::string& reason) {
    return "webkit_client::recvMessage Error in reading first four ints in recvMessage"
           "                        in webkit_client " +
           reason + "\n";
}
inline LogLine bad_payload_line(const std::string& reason) {
    return {kLogWebkit, kError, "Error in reading in webkit_client, exiting thread " + reason};
}
inline std::string bad_payload_text(const std::string& reason) {
    return "webkit_client::recvMessage Error in"
           "                                    reading in webkit_client: " +
           reason + "\n";
}

}  // namespace kestrel::testing
