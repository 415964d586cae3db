#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "common/LinuxCommonUtils.h"

namespace {

constexpr auto kFailed = static_cast<std::size_t>(-1);

void report_error() { std::fputs("error", stdout); }

}  // namespace

std::wstring LinuxCommonUtils::trimString(const std::wstring& text, const std::wstring& chars) {
    const std::size_t first = text.find_first_not_of(chars);
    if (first == std::wstring::npos) return L"";
    return text.substr(first, text.find_last_not_of(chars) - first + 1);
}

const char* LinuxCommonUtils::WCharToChar(const wchar_t* text) {
    thread_local std::string narrow;
    narrow.clear();
    for (; text != nullptr && *text != L'\0'; ++text) {
        narrow.push_back(static_cast<char>(static_cast<unsigned char>(*text)));
    }
    return narrow.c_str();
}

wchar_t* LinuxCommonUtils::CharToWChar(const char* text) {
    if (text == nullptr) text = "";
    const std::size_t length = std::mbstowcs(nullptr, text, 0);
    if (length == kFailed) report_error();

    // The result for an invalid text is "".
    const std::size_t room = length == kFailed ? 0 : length + 1;
    auto* const wide =
        static_cast<wchar_t*>(std::calloc(std::max<std::size_t>(room, 1), sizeof(wchar_t)));
    if (wide == nullptr) report_error();
    if (std::mbstowcs(wide, text, room) == kFailed) report_error();
    return wide;
}
