#pragma once

#include <string_view>

namespace kestrel::utilities {

// The client family's name of the platform that this library is built for.
#if defined(__x86_64__)
inline constexpr std::string_view kPlatformName = "linux64";
#elif defined(__i386__)
inline constexpr std::string_view kPlatformName = "linux";
#else
inline constexpr std::string_view kPlatformName = "armhf";
#endif

// The name of a platform's directory, also the suffix of its version files.
constexpr std::string_view platform_directory(std::string_view platform) {
    if (platform == "linux" || platform == "x86") return "linuxx86";
    if (platform == "linux64" || platform == "x64") return "linuxx64";
    return "linuxarmhf";
}

}  // namespace kestrel::utilities
