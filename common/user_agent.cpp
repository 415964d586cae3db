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

// "/" and the part; "" if the part is empty.
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

// Differs from the logging client's version search. Servers get this version: it must be the one of
// the running build and platform, and change with an update. The logging client accepts any
// platform's file under its own install root, and caches it.
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

// By value: the exported signature requires it.
std::string LinuxCommonUtils::GetTarnLaunchSourceUserAgentString(std::string source) {  // NOLINT
    const std::string version = WCharToChar(GetPorticoVersionFromQuoroot().c_str());
    return (source.empty() ? "Tarn" : source) + with_slash(version);
}

// By value: the exported signature requires it. `userAgent` may therefore be `name`, too.
void LinuxCommonUtils::GetWebkitUserAgentParamters(std::string userAgent,  // NOLINT
                                                   std::string& name, std::string& version) {
    const std::size_t slash = userAgent.rfind('/');
    name = userAgent.substr(0, slash);
    version = slash == std::string::npos ? userAgent : userAgent.substr(slash + 1);
}
