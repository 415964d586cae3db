#include "log/version_file.h"

#include <array>
#include <string_view>

namespace kestrel::logging {
namespace {

constexpr std::string_view kVersionKey = "ID_VERSION=";

}  // namespace

std::string version_in(std::FILE* file) {
    std::array<char, 128> piece;
    while (std::fgets(piece.data(), piece.size(), file) != nullptr) {
        const std::string_view line = piece.data();
        const std::size_t key = line.find(kVersionKey);
        if (key == std::string_view::npos) continue;
        const std::string_view value = line.substr(key + kVersionKey.size());
        return std::string(value.substr(0, value.find('\n')));
    }
    return "unknown";
}

}  // namespace kestrel::logging
