// The stream of a process as `kestrel-log follow` reads and prints it. The first byte is the size
// of the pieces in which the stream arrives.
#include <sys/socket.h>

#include <array>

#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"
#include "tools/log_line.h"
#include "tools/process_connection.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using kestrel::fuzz::check;
    kestrel::fuzz::Input input(data, size);
    const std::size_t piece_size = input.byte() + 1;
    std::array<int, 2> ends{};
    check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0);
    const kestrel::FileDescriptor process(ends[0]);
    kestrel::tools::ProcessConnection connection{kestrel::FileDescriptor(ends[1])};
    const auto look_at = [](const kestrel::tools::LogLine& line) {
        const std::string text = text_of(line, true);
        check(text.ends_with('\n') && text.find('\n') == text.size() - 1);
        const std::string json = json_of(line);
        check(json.ends_with('\n') && json.find('\n') == json.size() - 1);
    };
    bool is_welcome = true;
    while (is_welcome && !input.is_empty()) {
        const std::string_view piece = input.bytes(piece_size);
        check(send(process.get(), piece.data(), piece.size(), MSG_NOSIGNAL) != -1);
        is_welcome = connection.receive(look_at);
    }
    return 0;
}
