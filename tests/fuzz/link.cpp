// The whole link over a socket pair. The host sends the input in pieces of 143 bytes; each message
// that reaches a handler is sent back, and the host reads that in pieces of 137. A frame is never
// lost, torn or out of order, whatever came before it and however the pieces fall.
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <span>
#include <thread>

#include "ipc/frame.h"
#include "ipc/frame_assembler.h"
#include "ipc/items.h"
#include "ipc/send.h"
#include "ipc/webkit_client.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/quiet.h"

namespace {

using kestrel::Items;
using kestrel::fuzz::check;

constexpr std::size_t kSent = 143;
constexpr std::size_t kRead = 137;

// Slot 0's way back: the first string, with how many strings came.
void send_back(int* /*ints*/, std::string* strings) {
    const std::array<std::string_view, 1> items = {strings[0]};
    kestrel::send(5, {}, items);
}

// What slot 0 will get of these bytes if every header comes whole: worked out apart from the code
// under test.
std::vector<std::string> expected_of(std::string_view stream) {
    std::vector<std::string> expected;
    std::array<std::int32_t, 4> header{};
    while (stream.size() >= sizeof header) {
        std::memcpy(header.data(), stream.data(), sizeof header);
        const auto [type, ints, strings, length] = header;
        stream.remove_prefix(sizeof header);
        if (length < 0 || length > 5'000'000 || stream.size() < static_cast<std::size_t>(length)) {
            break;
        }
        std::string_view payload = stream.substr(0, static_cast<std::size_t>(length));
        stream.remove_prefix(payload.size());
        if (type != 0 || ints < 0 || strings < 0) continue;
        const std::int64_t items = std::int64_t{ints} + strings;
        std::string first;
        std::int64_t item = 0;
        for (; item < items && payload.find('\0') != std::string_view::npos; ++item) {
            const std::size_t end = payload.find('\0');
            if (item == ints) first = payload.substr(0, end);
            payload.remove_prefix(end + 1);
        }
        if (item == items) expected.push_back(first);
    }
    return expected;
}

std::string read_all(int fd) {
    std::string bytes;
    std::array<char, kRead> piece;
    ssize_t got = 0;
    while ((got = read(fd, piece.data(), piece.size())) > 0) {
        bytes.append(piece.data(), static_cast<std::size_t>(got));
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kestrel::fuzz::silence_error_lines();
    const std::string_view stream(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> expected = expected_of(stream);

    static std::array<webkit_client::InboundHandler, kestrel::kInboundHandlerSlots> handlers{};
    handlers[0] = send_back;
    webkit_client::func_array = handlers.data();
    std::array<int, 2> ends{};
    check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0);
    webkit_client::server_fd = ends[1];

    std::string sent_back;
    std::thread host_reads([&] { sent_back = read_all(ends[0]); });
    std::thread reader([] { webkit_client::recvMessage(); });
    for (std::string_view rest = stream; !rest.empty();) {
        const std::string_view piece = rest.substr(0, kSent);
        // The link may have stopped reading: then its end is still open, and takes what fits.
        if (send(ends[0], piece.data(), piece.size(), MSG_NOSIGNAL | MSG_DONTWAIT) == -1) break;
        rest.remove_prefix(piece.size());
    }
    shutdown(ends[0], SHUT_WR);
    reader.join();
    shutdown(ends[1], SHUT_RDWR);
    host_reads.join();
    close(ends[0]);
    close(ends[1]);
    webkit_client::server_fd = -1;

    // A header that came in two pieces ends the reader: what has come until then is a beginning.
    kestrel::FrameAssembler assembler({kestrel::kMaxInboundPayload, 1});
    std::span<const char> bytes(sent_back);
    std::size_t count = 0;
    while (const kestrel::Frame frame = assembler.next(bytes)) {
        Items items;
        check(kestrel::decode_items(*frame, items) && items.strings.size() == 1);
        check(count < expected.size() && items.strings[0] == expected[count++]);
    }
    check(bytes.empty() && !assembler.is_inside_frame() && assembler.fault().empty());
    return 0;
}
