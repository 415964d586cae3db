#include "benchmarks/extension/bare_trip.h"

#include <glib.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>
#include <thread>

#include "benchmarks/unix_socket.h"

namespace kestrel::bench {
namespace {

struct Trip {
    JSGlobalContextRef context = nullptr;
    int link = -1;
    std::array<char, 4'102> bytes;  // with the texts' NULs
};

Trip trip;

JSValueRef made_string(const char* utf8) {
    const JSStringRef text = JSStringCreateWithUTF8CString(utf8);
    const JSValueRef value = JSValueMakeString(trip.context, text);
    JSStringRelease(text);
    return value;
}

gboolean finish(void* /*data*/) {
    const JSStringRef name = JSStringCreateWithUTF8CString("bareComplete");
    const JSValueRef callback = JSEvaluateScript(trip.context, name, nullptr, nullptr, 1, nullptr);
    JSStringRelease(name);
    const std::array<JSValueRef, 5> arguments = {made_string(trip.bytes.data()), made_string(""),
                                                 made_string(""), made_string(""), made_string("")};
    JSObjectCallAsFunction(trip.context, JSValueToObject(trip.context, callback, nullptr), nullptr,
                           arguments.size(), arguments.data(), nullptr);
    constexpr std::array<char, 16> kDelivered{};
    if (write(trip.link, kDelivered.data(), kDelivered.size()) == -1) std::abort();
    return G_SOURCE_REMOVE;
}

void receive(int fd) {
    while (read(fd, trip.bytes.data(), trip.bytes.size()) > 0) g_idle_add(finish, nullptr);
}

int echo_descriptor() {
    static const int descriptor = [] {
        const int fd = connected_socket(std::string(g_get_home_dir()) + "/.QUOClient/echo");
        std::thread(receive, fd).detach();
        return fd;
    }();
    return descriptor;
}

}  // namespace

void bare_trip(JSContextRef context, std::span<const JSValueRef> texts, int link) {
    trip.context = JSContextGetGlobalContext(context);
    trip.link = link;
    std::size_t size = 0;
    for (const JSValueRef value : texts) {
        const JSStringRef text = JSValueToStringCopy(context, value, nullptr);
        const std::size_t room = trip.bytes.size() - size;
        size += JSStringGetUTF8CString(text, trip.bytes.data() + size, room);
        JSStringRelease(text);
    }
    const ssize_t written = write(echo_descriptor(), trip.bytes.data(), size);
    if (written != static_cast<ssize_t>(size)) std::abort();
}

}  // namespace kestrel::bench
