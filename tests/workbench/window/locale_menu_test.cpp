#include "workbench/window/locale_menu.h"

#include <gmock/gmock.h>

#include <memory>
#include <utility>

#include "tests/workbench/window/widgets.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

class LocaleMenuTest : public ::testing::Test {
  protected:
    std::unique_ptr<LocaleMenu> menu(std::vector<std::string> locales, std::string current) {
        return std::make_unique<LocaleMenu>(
            LocaleMenu::Choices{std::move(locales), std::move(current)},
            [this](const std::string& locale) { chosen.push_back(locale); });
    }
    static bool is_active(const LocaleMenu& menu, const std::string& locale) {
        return gtk_toggle_button_get_active(
                   GTK_TOGGLE_BUTTON(part(menu.widget(), "locale " + locale))) != FALSE;
    }
    static void choose(const LocaleMenu& menu, const std::string& locale) {
        gtk_button_clicked(GTK_BUTTON(part(menu.widget(), "locale " + locale)));
    }

    std::vector<std::string> chosen;
};

TEST_F(LocaleMenuTest, ShowsTheCurrentLocaleAndReportsTheChoice) {
    const auto locales = menu({"de", "fr"}, "fr");
    const ShownWidget shown(locales->widget());
    EXPECT_TRUE(is_active(*locales, "fr"));
    EXPECT_TRUE(chosen.empty());
    choose(*locales, "de");
    choose(*locales, "");
    EXPECT_THAT(chosen, ElementsAre("de", ""));
}

TEST_F(LocaleMenuTest, IncludesTheCurrentLocaleIfItHasNoCatalogue) {
    const auto locales = menu({"de"}, "de_AT");
    EXPECT_TRUE(is_active(*locales, "de_AT"));
}

TEST_F(LocaleMenuTest, IsInsensitiveWithoutACatalogue) {
    EXPECT_FALSE(gtk_widget_get_sensitive(menu({}, "")->widget()));
    EXPECT_FALSE(gtk_widget_get_sensitive(menu({}, "de")->widget()));
    EXPECT_TRUE(gtk_widget_get_sensitive(menu({"de"}, "")->widget()));
}

}  // namespace
}  // namespace kestrel::testing
