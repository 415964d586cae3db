#include "program/language.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cstdlib>
#include <optional>
#include <string>

#include "tests/common/scoped_variable.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::StrEq;

class LanguageTest : public ::testing::Test {
  protected:
    // The locale of messages when the environment's is `locale` and the language is chosen.
    std::string locale_with(const std::string& locale, const std::string& language) {
        setenv("LC_ALL", locale.c_str(), 1);
        std::setlocale(LC_ALL, "C");  // which it stays if the environment's is not there
        std::setlocale(LC_ALL, "");
        use_language(language, directory.path());
        return std::setlocale(LC_ALL, "") == nullptr ? "none"
                                                     : std::setlocale(LC_MESSAGES, nullptr);
    }
    ~LanguageTest() override { std::setlocale(LC_ALL, "C"); }

    const TemporaryDirectory directory;
    const ScopedVariable all{"LC_ALL", ""};
    const ScopedVariable path{"LOCPATH", std::nullopt};
    const ScopedVariable variable{"LANGUAGE", std::nullopt};
};

TEST_F(LanguageTest, IsOneWithCataloguesInTheLocalesThatHaveNone) {
    for (const char* locale : {"C", "POSIX", "C.UTF-8", "xx_NOT_GENERATED.UTF-8"}) {
        EXPECT_EQ(locale_with(locale, "de"), "de.UTF-8") << locale;
        EXPECT_THAT(std::getenv("LANGUAGE"), StrEq("de"));
        unsetenv("LOCPATH");
    }
}

TEST_F(LanguageTest, MayBeAListOfLanguages) {
    EXPECT_EQ(locale_with("C", "pt_BR:fr"), "pt_BR.UTF-8");
    EXPECT_THAT(std::getenv("LANGUAGE"), StrEq("pt_BR:fr"));
}

TEST_F(LanguageTest, LeavesALocaleThatHasCatalogues) {
    ASSERT_EQ(locale_with("C", "fr"), "fr.UTF-8");
    EXPECT_EQ(locale_with("fr.UTF-8", "de"), "fr.UTF-8");
    EXPECT_THAT(std::getenv("LANGUAGE"), StrEq("de"));
}

TEST_F(LanguageTest, IsNoPath) {
    locale_with("C", "../de");
    EXPECT_THAT(std::getenv("LC_ALL"), StrEq(".UTF-8"));
}

}  // namespace
}  // namespace kestrel::testing
