#include "tools/console.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "program/translation.h"

namespace kestrel::tools {
namespace {

unsigned byte_at(std::string_view text, std::size_t offset) {
    return offset < text.size() ? static_cast<unsigned char>(text[offset]) : 0;
}

// The length of the UTF-8 character at the start of the text; 0 when there is none.
std::size_t character_length(std::string_view text) {
    struct Form {
        unsigned first_low, first_high, second_low, second_high;
        std::size_t length;
    };
    // Overlong forms, surrogates and what lies beyond Unicode are left out.
    static constexpr std::array<Form, 9> kForms{{
        {0x00, 0x7f, 0x00, 0xff, 1},
        {0xc2, 0xdf, 0x80, 0xbf, 2},
        {0xe0, 0xe0, 0xa0, 0xbf, 3},
        {0xe1, 0xec, 0x80, 0xbf, 3},
        {0xed, 0xed, 0x80, 0x9f, 3},
        {0xee, 0xef, 0x80, 0xbf, 3},
        {0xf0, 0xf0, 0x90, 0xbf, 4},
        {0xf1, 0xf3, 0x80, 0xbf, 4},
        {0xf4, 0xf4, 0x80, 0x8f, 4},
    }};
    const unsigned first = byte_at(text, 0);
    for (const Form& form : kForms) {
        if (first < form.first_low || first > form.first_high) continue;
        if (form.length == 1) return 1;
        if (byte_at(text, 1) < form.second_low || byte_at(text, 1) > form.second_high) return 0;
        for (std::size_t offset = 2; offset < form.length; ++offset) {
            if ((byte_at(text, offset) & 0xc0U) != 0x80U) return 0;
        }
        return form.length;
    }
    return 0;
}

bool is_control(std::string_view character) {
    const unsigned first = byte_at(character, 0);
    if (character.size() == 1) return first < 0x20 || first == 0x7f;
    return first == 0xc2 && byte_at(character, 1) < 0xa0;
}

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
        const std::size_t length = character_length(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        if (length > 0 && !is_control(character)) {
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
