// Reads values from the front of a fuzz input.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel::fuzz {

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    bool is_empty() const { return rest_.empty(); }
    std::string_view rest() const { return rest_; }

    // 0 at the end.
    std::size_t byte() {
        if (rest_.empty()) return 0;
        const auto value = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return value;
    }

    // `size` bytes, fewer at the end.
    std::string_view bytes(std::size_t size) {
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    // The bytes before the next NUL, which is consumed too.
    std::string text() {
        const std::size_t end = std::min(rest_.find('\0'), rest_.size());
        std::string taken(rest_.substr(0, end));
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return taken;
    }

  private:
    std::string_view rest_;
};

}  // namespace kestrel::fuzz
