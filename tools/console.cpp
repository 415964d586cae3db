#include "tools/console.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "program/translation.h"

namespace kestrel::tools {
void print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (std::fflush(stdout) == 0) return;
    if (errno == EPIPE) throw OutputClosed();
    throw std::system_error(errno, std::generic_category(), translate("standard output"));
}

bool wants_colours() {
    const char* const no_color = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) == 1 && (no_color == nullptr || *no_color == '\0');
}

}  // namespace kestrel::tools
