#include "tools/console.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "ipc/utf8.h"
#include "program/translation.h"

namespace kestrel::tools {
namespace {

bool is_control(char32_t code) { return code < 0x20 || (code >= 0x7f && code < 0xa0); }

std::string escaped(char byte) {
    if (byte == '\n') return "\\n";
    if (byte == '\t') return "\\t";
    std::array<char, 5> text{};
    std::snprintf(text.data(), text.size(), "\\x%02x", static_cast<unsigned char>(byte));
    return text.data();
}

}  // namespace

void print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (std::fflush(stdout) == 0) return;
    if (errno == EPIPE) throw OutputClosed();
    throw std::system_error(errno, std::generic_category(), translate("standard output"));
}

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const auto [size, code] = first_character(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(size, 1));
        if (size > 0 && !is_control(code)) {
            result += character;
        } else {
            for (const char byte : character) result += escaped(byte);
        }
        text.remove_prefix(character.size());
    }
    return result;
}

bool wants_colours() {
    const char* const no_color = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) == 1 && (no_color == nullptr || *no_color == '\0');
}

}  // namespace kestrel::tools
