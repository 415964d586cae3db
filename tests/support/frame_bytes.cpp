#include "tests/support/frame_bytes.h"

#include <array>
#include <cstring>
#include <span>

namespace kestrel::testing {
namespace {

std::string int32_bytes(int value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>((static_cast<unsigned>(value) >> shift) & 0xffU);
    }
    return bytes;
}

}  // namespace

std::string header_bytes(int type, int num_of_ints, int num_of_strings, int total_len_of_string) {
    return int32_bytes(type) + int32_bytes(num_of_ints) + int32_bytes(num_of_strings) +
           int32_bytes(total_len_of_string);
}

std::string frame_bytes(int type, std::initializer_list<std::string_view> ints,
                        std::initializer_list<std::string_view> strings) {
    std::string payload;
    for (const std::string_view item : ints) payload.append(item).push_back('\0');
    for (const std::string_view item : strings) payload.append(item).push_back('\0');
    return header_bytes(type, static_cast<int>(ints.size()), static_cast<int>(strings.size()),
                        static_cast<int>(payload.size())) +
           payload;
}

std::string bytes_text(const webkit_message& frame) {
    const std::span<const char> bytes = bytes_of(frame);
    return {bytes.begin(), bytes.end()};
}

std::vector<ReceivedFrame> take_frames(std::string& bytes) {
    std::vector<ReceivedFrame> frames;
    std::array<int, 4> header{};
    std::size_t at = 0;
    while (bytes.size() - at >= sizeof header) {
        std::memcpy(header.data(), bytes.data() + at, sizeof header);
        const std::size_t size = sizeof header + static_cast<std::size_t>(header[3]);
        if (bytes.size() - at < size) break;
        frames.push_back({header[0], bytes.substr(at + sizeof header, size - sizeof header)});
        at += size;
    }
    bytes.erase(0, at);
    return frames;
}

}  // namespace kestrel::testing
