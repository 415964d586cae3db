#include "benchmarks/extension/bare_trip.h"

#include <glib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <thread>

namespace kestrel::bench {
namespace {

struct Trip {
    JSGlobalContextRef context = nullptr;
    JSObjectRef callback = nullptr;
    std::array<char, 4'097> bytes;  // with the text's NUL
};

Trip trip;

int connect_to_echo() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = std::string(g_get_home_dir()) + "/.QUOClient/echo";
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == -1) std::abort();
    return fd;
}

gboolean finish(void* /*data*/) {
    const JSStringRef text = JSStringCreateWithUTF8CString(trip.bytes.data());
    const JSValueRef argument = JSValueMakeString(trip.context, text);
    JSStringRelease(text);
    const JSObjectRef callback = trip.callback;
    JSObjectCallAsFunction(trip.context, callback, nullptr, 1, &argument, nullptr);
    JSValueUnprotect(trip.context, callback);
    return G_SOURCE_REMOVE;
}

void receive(int fd) {
    while (read(fd, trip.bytes.data(), trip.bytes.size()) > 0) g_idle_add(finish, nullptr);
}

int echo_descriptor() {
    static const int descriptor = [] {
        const int fd = connect_to_echo();
        std::thread(receive, fd).detach();
        return fd;
    }();
    return descriptor;
}

}  // namespace

void bare_trip(JSContextRef context, JSStringRef text, JSObjectRef callback) {
    trip.context = JSContextGetGlobalContext(context);
    trip.callback = callback;
    JSValueProtect(context, callback);
    const std::size_t size = JSStringGetUTF8CString(text, trip.bytes.data(), trip.bytes.size());
    const ssize_t written = write(echo_descriptor(), trip.bytes.data(), size);
    if (written != static_cast<ssize_t>(size)) std::abort();
}

}  // namespace kestrel::bench
