// The host's incremental frame parser, and frames as text and JSON. The first byte is the size of
// the pieces in which the stream arrives.
#include <nlohmann/json.hpp>

#include <chrono>
#include <span>

#include "base/utf8.h"
#include "ipc/frame_assembler.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"
#include "trace/frame_json.h"
#include "trace/frame_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using kestrel::fuzz::check;
    kestrel::fuzz::Input input(data, size);
    const std::size_t piece_size = input.byte() + 1;
    kestrel::FrameAssembler assembler({100'000, 1'000});
    while (!input.is_empty() && assembler.fault().empty()) {
        std::span<const char> bytes(input.bytes(piece_size));
        while (const kestrel::Frame frame = assembler.next(bytes)) {
            for (const auto direction :
                 {kestrel::Direction::from_page, kestrel::Direction::to_page}) {
                const std::string line = frame_text(direction, 1, *frame);
                check(kestrel::is_utf8(line) && line.find('\n') == std::string::npos);
                const auto time = std::chrono::system_clock::time_point{};
                check(nlohmann::json::accept(frame_json(time, direction, 1, *frame)));
            }
        }
        check(bytes.empty() || !assembler.fault().empty());
    }
    return 0;
}
