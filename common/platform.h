#pragma once

#include <string_view>

namespace kestrel::utilities {

// The platform this library is built for, as the client family names it.
#if defined(__x86_64__)
inline constexpr std::string_view kPlatformName = "linux64";
#elif defined(__i386__)
inline constexpr std::string_view kPlatformName = "linux";
#else
inline constexpr std::string_view kPlatformName = "armhf";
#endif

// The directory, and the suffix of version files, that belongs to a platform name.
constexpr std::string_view platform_directory(std::string_view platform) {
    if (platform == "linux" || platform == "x86") return "linuxx86";
    if (platform == "linux64" || platform == "x64") return "linuxx64";
    return "linuxarmhf";
}

}  // namespace kestrel::utilities
