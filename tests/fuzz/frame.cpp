// The decoder of inbound frames, and the handlers' dispatch: sixteen bytes of header, then payload.
#include "ipc/frame.h"

#include <array>
#include <cstring>

#include "ipc/frame_builder.h"
#include "ipc/items.h"
#include "ipc/webkit_client.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/quiet.h"

namespace {

using kestrel::fuzz::check;

const webkit_message* dispatched;

// What a handler may count on: its items, an empty string behind them, six strings at least.
void handle(int* ints, std::string* strings) {
    kestrel::Items items;
    check(kestrel::decode_items(*dispatched, items));
    for (std::size_t i = 0; i < items.ints.size(); ++i) check(ints[i] == items.ints[i]);
    for (std::size_t i = 0; i < items.strings.size(); ++i) check(strings[i] == items.strings[i]);
    for (std::size_t i = items.strings.size(); i < 6; ++i) check(strings[i].empty());
    check(strings[items.strings.size()].empty());
}

kestrel::Frame frame_of(std::string_view bytes) {
    webkit_message header{};
    std::memcpy(&header, bytes.data(), sizeof header);
    const std::string_view payload = bytes.substr(sizeof header);
    header.total_len_of_string = static_cast<std::int32_t>(payload.size());
    kestrel::Frame frame(static_cast<webkit_message*>(std::malloc(sizeof header + payload.size())));
    *frame = header;
    std::memcpy(kestrel::payload_begin(*frame), payload.data(), payload.size());
    return frame;
}

// What has been decoded is built again, byte by byte the same but for the spelling of integers.
void check_round_trip(const webkit_message& frame) {
    kestrel::Items items;
    if (!kestrel::decode_items(frame, items)) return;
    const std::vector<std::string_view> texts(items.strings.begin(), items.strings.end());
    const kestrel::Frame again = kestrel::build_frame(frame.msg_type, items.ints, texts);
    kestrel::Items decoded;
    check(kestrel::decode_items(*again, decoded));
    check(decoded.ints == items.ints && decoded.strings == items.strings);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kestrel::fuzz::silence_error_lines();
    if (size < sizeof(webkit_message)) return 0;
    static std::array<webkit_client::InboundHandler, kestrel::kInboundHandlerSlots> handlers{};
    handlers[0] = handlers[1] = handlers[34] = handlers[60] = handle;
    webkit_client::func_array = handlers.data();

    const kestrel::Frame frame = frame_of({reinterpret_cast<const char*>(data), size});
    check_round_trip(*frame);
    dispatched = frame.get();
    webkit_message* message = frame.get();
    webkit_client::processMessage(message);
    return 0;
}
