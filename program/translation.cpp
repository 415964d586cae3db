#include "program/translation.h"

#include <libintl.h>

#include <array>
#include <clocale>
#include <cstdarg>
#include <cstdio>

#include "program/beside_program.h"

namespace kestrel {
namespace {

constexpr const char* kDomain = "kestrel-tools";

// Relative to the program: in the build tree, and installed.
constexpr std::array kCatalogueDirectories = {"../po", KESTREL_LOCALE_FROM_BIN};

}  // namespace

void use_translations() {
    std::setlocale(LC_ALL, "");
    for (const char* directory : kCatalogueDirectories) {
        const std::string found = beside_program(directory);
        if (found.empty()) continue;
        bindtextdomain(kDomain, found.c_str());
        bind_textdomain_codeset(kDomain, "UTF-8");
        return;
    }
}

// gettext translates "" to the header of the catalogue.
const char* translate(const char* text) { return *text == '\0' ? text : dgettext(kDomain, text); }

std::string formatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

}  // namespace kestrel
