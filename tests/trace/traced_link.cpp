#include "tests/trace/traced_link.h"

#include <fcntl.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/support/listening_host.h"
#include "tests/support/temporary_directory.h"
#include "trace/frame_trace.h"

namespace kestrel::testing {
namespace {

constinit std::array<webkit_client::InboundHandler, kInboundHandlerSlots> handlers{};

void answer(int*, std::string* strings) {
    send(33, {}, std::array<std::string_view, 2>{strings[0], strings[1]});
}

int connect_link(const char* trace) {
    if (trace == nullptr) {
        unsetenv("KESTREL_TRACE");
    } else {
        setenv("KESTREL_TRACE", trace, 1);
    }
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/webkit_socket2";
    const ListeningHost listening(path);
    handlers[1] = answer;
    start_frame_trace();
    webkit_client::initComm(handlers.data(), strdup(path.c_str()));
    const HostEnd host = listening.accept();
    host.read_frame();
    return fcntl(host.fd(), F_DUPFD_CLOEXEC, 0);
}

}  // namespace

TracedLink::TracedLink(const char* trace) : HostEnd(connect_link(trace)) {}

}  // namespace kestrel::testing
