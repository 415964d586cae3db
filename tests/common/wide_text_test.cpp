#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/support/temporary_directory.h"

using kestrel::testing::in_child;
using kestrel::testing::Output;
using kestrel::testing::TemporaryDirectory;

namespace {

bool is_memory_out = false;

}  // namespace

extern "C" void* __real_calloc(std::size_t, std::size_t);
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size) {
    return is_memory_out ? nullptr : __real_calloc(count, size);
}

namespace {

struct Free {
    void operator()(wchar_t* text) const { std::free(text); }
};
using WideText = std::unique_ptr<wchar_t, Free>;

// The text in the locale, as numbers, so that printing does not depend on a locale.
Output widened_in(const char* locale, const std::string& text) {
    return in_child([&] {
        if (std::setlocale(LC_ALL, locale) == nullptr) std::cerr << "no locale " << locale;
        const WideText wide(LinuxCommonUtils::CharToWChar(text.c_str()));
        for (const wchar_t character : std::wstring(wide.get())) {
            std::cout << ' ' << std::hex << static_cast<unsigned>(character);
        }
    });
}

TEST(Trim, RemovesTheCharactersAtBothEndsOnly) {
    EXPECT_EQ(LinuxCommonUtils::trimString(L"  ab c ", L" "), L"ab c");
    EXPECT_EQ(LinuxCommonUtils::trimString(L"\t ab\t\n", L" \t\n"), L"ab");
    EXPECT_EQ(LinuxCommonUtils::trimString(L"€ab€", L"€"), L"ab");
    EXPECT_EQ(LinuxCommonUtils::trimString(L"a", L" "), L"a");
}

TEST(Trim, IsEmptyIfAllCharactersAreTrimmed) {
    EXPECT_EQ(LinuxCommonUtils::trimString(L"   ", L" "), L"");
    EXPECT_EQ(LinuxCommonUtils::trimString(L"", L" "), L"");
    EXPECT_EQ(LinuxCommonUtils::trimString(L"", L""), L"");
}

TEST(Trim, WithoutCharactersKeepsTheText) {
    EXPECT_EQ(LinuxCommonUtils::trimString(L" a ", L""), L" a ");
}

TEST(NarrowText, HasTheLowEightBitsOfEveryCharacter) {
    EXPECT_STREQ(LinuxCommonUtils::WCharToChar(L"abc"), "abc");
    EXPECT_STREQ(LinuxCommonUtils::WCharToChar(L"\u00e9\u20ac\U0001f600"), "\xe9\xac");
    EXPECT_STREQ(LinuxCommonUtils::WCharToChar(L"a\u0100b"), "a");
    EXPECT_STREQ(LinuxCommonUtils::WCharToChar(L""), "");
    EXPECT_STREQ(LinuxCommonUtils::WCharToChar(nullptr), "");
}

TEST(NarrowText, KeepsBytesAfterACharacterTruncatedToNul) {
    const char* const text = LinuxCommonUtils::WCharToChar(L"a\u0100b");
    EXPECT_EQ(std::string(text, 3), std::string("a\0b", 3));
}

TEST(NarrowText, BelongsToItsThread) {
    const char* const here = LinuxCommonUtils::WCharToChar(L"here");
    std::thread([here] {
        EXPECT_STREQ(LinuxCommonUtils::WCharToChar(L"there"), "there");
        EXPECT_STREQ(here, "here");
    }).join();
    EXPECT_STREQ(here, "here");
    LinuxCommonUtils::WCharToChar(L"next");
    EXPECT_STREQ(LinuxCommonUtils::WCharToChar(L"next"), "next");
}

TEST(NarrowText, IsIndependentOfOtherThreads) {
    const auto convert = [](wchar_t character) {
        const std::wstring wide(100, character);
        const std::string narrow(100, static_cast<char>(character));
        for (int i = 0; i < 10'000; ++i) {
            ASSERT_EQ(LinuxCommonUtils::WCharToChar(wide.c_str()), narrow);
        }
    };
    std::thread other(convert, L'a');
    convert(L'b');
    other.join();
}

TEST(WideText, DecodesUtf8Locales) {
    EXPECT_EQ(widened_in("C.UTF-8", "gr\xc3\xbcn \xe2\x82\xac \xf0\x9f\x98\x80"),
              (Output{" 67 72 fc 6e 20 20ac 20 1f600", ""}));
    EXPECT_EQ(widened_in("C.UTF-8", ""), (Output{"", ""}));
}

// Generates the locale: systems need not have one with this encoding.
TEST(WideText, DecodesLatin1Locales) {
    const TemporaryDirectory locales;
    const std::string make =
        "localedef -i en_US -f ISO-8859-1 " + locales.path() + "/latin1 >/dev/null 2>&1";
    if (std::system(make.c_str()) != 0) GTEST_SKIP() << "needs the sources of the locales";
    setenv("LOCPATH", locales.path().c_str(), 1);
    EXPECT_EQ(widened_in("latin1", "gr\xfcn"), (Output{" 67 72 fc 6e", ""}));
    EXPECT_EQ(widened_in("latin1", "\xc3\xbc"), (Output{" c3 bc", ""}));
    unsetenv("LOCPATH");
}

TEST(WideText, IsEmptyAfterOneErrorForInvalidText) {
    for (const char* text : {"a\xff", "\xc3", "\xe2\x82", "\xed\xa0\x80"}) {
        EXPECT_EQ(widened_in("C.UTF-8", text), (Output{"error", ""}));
    }
}

TEST(WideText, IsEmptyForNull) {
    const WideText wide(LinuxCommonUtils::CharToWChar(nullptr));
    EXPECT_STREQ(wide.get(), L"");
}

TEST(WideText, IsNullWithoutMemoryAfterAnErrorForEachFailure) {
    const auto convert = [](const char* text) {
        return in_child([&] {
            std::setlocale(LC_ALL, "C.UTF-8");
            std::cout << '[';
            is_memory_out = true;
            const bool is_null = LinuxCommonUtils::CharToWChar(text) == nullptr;
            is_memory_out = false;
            std::cout << ']' << is_null;
        });
    };
    EXPECT_EQ(convert("text"), (Output{"[error]1", ""}));
    // The query, the allocation, and the conversion, which is tried anyway.
    EXPECT_EQ(convert("\xff"), (Output{"[errorerrorerror]1", ""}));
}

}  // namespace
