#include "tests/fuzz/script_page.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <span>

#include "extension/KsJS_proxy.h"
#include "extension/page_globals.h"
#include "ipc/items.h"
#include "jsapi/script_text.h"

namespace kestrel::fuzz {
namespace {

constexpr double kSecondsAScript = 0.5;  // fuzzed script loops

}  // namespace

ScriptPage::ScriptPage() : context_(JSGlobalContextCreate(nullptr)) {
    JSContextGroupSetExecutionTimeLimit(
        JSContextGetGroup(context_), kSecondsAScript, [](JSContextRef, void*) { return true; },
        nullptr);
    jsContext = context_;
    globalObject = JSContextGetGlobalObject(context_);
    KsJS_proxy::loadJSAPI(context_, globalObject);
    std::array<int, 2> ends{};
    check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0);
    host_ = ends[0];
    webkit_client::server_fd = ends[1];
}

ScriptPage::~ScriptPage() {
    close(webkit_client::server_fd);
    webkit_client::server_fd = -1;
    close(host_);
    jsContext = nullptr;
    globalObject = nullptr;
    JSGlobalContextRelease(context_);
}

void ScriptPage::run(const std::string& script) const {
    JSEvaluateScript(context_, make_script_string(script.c_str()).get(), nullptr, nullptr, 1,
                     nullptr);
}

int ScriptPage::drain() {
    int frames = 0;
    std::array<char, 65'536> piece;
    ssize_t got = 0;
    while ((got = recv(host_, piece.data(), piece.size(), MSG_DONTWAIT)) > 0) {
        std::span<const char> bytes(piece.data(), static_cast<std::size_t>(got));
        while (const Frame frame = assembler_.next(bytes)) {
            Items items;
            check(decode_items(*frame, items));
            ++frames;
        }
        check(assembler_.fault().empty());
    }
    check(!assembler_.is_inside_frame());
    return frames;
}

}  // namespace kestrel::fuzz
