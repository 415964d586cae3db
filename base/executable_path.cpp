#include "base/executable_path.h"

#include <unistd.h>

#include <array>

namespace kestrel {

std::string executable_path() {
    std::array<char, 4'095> target;
    const ssize_t length = readlink("/proc/self/exe", target.data(), target.size());
    return length < 0 ? "" : std::string(target.data(), static_cast<std::size_t>(length));
}

}  // namespace kestrel
