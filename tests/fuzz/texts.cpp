// The text utilities: user agents, times, trimming, wide and narrow strings. The input is two
// strings, each up to a NUL.
#include <cstdlib>
#include <string>

#include "common/LinuxCommonUtils.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"

namespace {

using kestrel::fuzz::check;

void split_user_agent(const std::string& text) {
    std::string name;
    std::string version;
    LinuxCommonUtils::GetWebkitUserAgentParamters(text, name, version);
    const bool has_slash = text.find('/') != std::string::npos;
    check(has_slash ? name + "/" + version == text : name == text && version == text);
    LinuxCommonUtils::GetTarnLaunchSourceUserAgentString(text);
}

void convert_times(const std::string& text, const std::string& format) {
    LinuxCommonUtils::ConvertStringToTime(text.c_str(), format.c_str());
    check(LinuxCommonUtils::GetCurrentTimeString(format.c_str()).size() < 256);
}

void convert_widths(const std::string& text, const std::string& characters) {
    const std::wstring wide(text.begin(), text.end());
    const std::wstring trimmed =
        LinuxCommonUtils::trimString(wide, {characters.begin(), characters.end()});
    check(wide.find(trimmed) != std::wstring::npos);
    check(LinuxCommonUtils::WCharToChar(wide.c_str()) == text);
    std::free(LinuxCommonUtils::CharToWChar(text.c_str()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool prepared = [] {
        setenv("QUOROOT", "/nonexistent", 1);
        return std::freopen("/dev/null", "w", stdout) != nullptr &&
               std::freopen("/dev/null", "w", stderr) != nullptr;
    }();
    if (!prepared) return 0;
    kestrel::fuzz::Input input(data, size);
    const std::string first = input.text();
    const std::string second = input.text();
    split_user_agent(first);
    convert_times(first, second);
    convert_widths(first, second);
    return 0;
}
