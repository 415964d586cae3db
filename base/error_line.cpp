#include "base/error_line.h"

#include <cerrno>
#include <cstdio>

namespace kestrel {

void error_line(std::string_view text) {
    const int saved_errno = errno;
    std::fwrite(text.data(), 1, text.size(), stderr);
    errno = saved_errno;
}

}  // namespace kestrel
