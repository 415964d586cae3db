#include <sys/utsname.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "common/LinuxCommonUtils.h"
#include "common/platform.h"

namespace {

struct Free {
    void operator()(wchar_t* text) const { std::free(text); }
};

std::wstring widened(const char* text) {
    const std::unique_ptr<wchar_t, Free> wide(LinuxCommonUtils::CharToWChar(text));
    return wide ? wide.get() : L"";
}

// A part of a product token together with the slash before it, or nothing.
template <typename Text>
Text with_slash(const Text& part) {
    if (part.empty()) return part;
    return typename Text::value_type{'/'} + part;
}

}  // namespace

std::wstring LinuxCommonUtils::GetOsName() { return L"Linux"; }

std::wstring LinuxCommonUtils::GetOsVersion() {
    utsname system{};
    return uname(&system) == 0 ? widened(system.release) : L"";
}

// Not the logging client's version search. This one is told to servers: it must be the version of
// the build that is running, of this platform, and follow an update at once. The log's only labels
// lines: any platform's file under its own install root will do, for the life of the process.
std::wstring LinuxCommonUtils::GetPorticoVersionFromQuoroot() {
    std::ifstream file(
        getQUOROOT() + "/pkginf/Ver.core." +
        std::string(kestrel::utilities::platform_directory(kestrel::utilities::kPlatformName)));
    std::array<char, 256> buffer{};
    file.getline(buffer.data(), buffer.size());
    const std::string_view line = buffer.data();
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return L"";
    return widened(line.data() + equals + 1);
}

std::wstring LinuxCommonUtils::GetTarnUserAgent() {
    return L"VeltranePortico" + with_slash(GetPorticoVersionFromQuoroot()) + L" " + GetOsName() +
           with_slash(GetOsVersion()) + L" M4Class TarnCapable";
}

// The source comes by value because the exported signature says so.
std::string LinuxCommonUtils::GetTarnLaunchSourceUserAgentString(std::string source) {  // NOLINT
    const std::string version = WCharToChar(GetPorticoVersionFromQuoroot().c_str());
    return (source.empty() ? "Tarn" : source) + with_slash(version);
}

// The text comes by value because the exported signature says so, and may then also be `name`.
void LinuxCommonUtils::GetWebkitUserAgentParamters(std::string userAgent,  // NOLINT
                                                   std::string& name, std::string& version) {
    const std::size_t slash = userAgent.rfind('/');
    name = userAgent.substr(0, slash);
    version = slash == std::string::npos ? userAgent : userAgent.substr(slash + 1);
}
