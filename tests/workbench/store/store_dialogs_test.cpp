// Dialogs and menus that the workbench shows for the store.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/support/main_loop.h"
#include "tests/workbench/store/store_fixture.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST_F(StoreTest, StartsAProgramIfTheUserAgrees) {
    visit([](Person& person) {
        person.click(category("computer"));
        person.click(card(kStartedProgram, ".launch"));
        EXPECT_EQ(person.wait_for_dialog(), std::string("Start Sample?\n") + kStartedProgram);
        EXPECT_FALSE(fs::exists(trace_of_started_program()));
        person.press("Start");
        EXPECT_TRUE(person.sees(has_toast("Sample is starting")));
        EXPECT_TRUE(run_main_loop_until([] { return fs::exists(trace_of_started_program()); }));
    });
}

TEST_F(StoreTest, DoesNotStartAProgramIfTheUserDeclines) {
    visit([](Person& person) {
        person.click(category("computer"));
        person.click(card(kStartedProgram, ".launch"));
        ASSERT_THAT(person.wait_for_dialog(), StartsWith("Start Sample?"));
        person.press("Cancel");
        EXPECT_TRUE(person.sees(has_toast("Sample was not started: the user declined")));
        person.click(card(kStartedProgram, ".launch"));
        ASSERT_THAT(person.wait_for_dialog(), StartsWith("Start Sample?"));
        person.dismiss();
        EXPECT_TRUE(person.sees("document.querySelectorAll('.toast').length === 2"));
    });
    EXPECT_FALSE(fs::exists(trace_of_started_program()));
}

TEST_F(StoreTest, ReportsAMissingApplicationImmediately) {
    visit([](Person& person) {
        person.click(card("letters", ".launch"));
        EXPECT_TRUE(person.sees(has_toast("Letters was not started: there is no application")));
        EXPECT_FALSE(person.has_dialog());
    });
}

TEST_F(StoreTest, OpensAddressesAndDocumentsOnlyIfTheUserAgrees) {
    visit([](Person& person) {
        person.click(card("letters", ".publisher"));
        EXPECT_EQ(person.wait_for_dialog(),
                  "Open this address?\nhttps://northwind-office.example/letters");
        person.press("Cancel");
        person.click(".document");
        EXPECT_THAT(person.wait_for_dialog(),
                    AllOf(StartsWith("Open this file?\nfile://"), HasSubstr("/documents/Budget")));
        person.press("Cancel");
        EXPECT_TRUE(person.sees(has_toast("was not opened: the user declined")));
    });
}

TEST_F(StoreTest, ShowsAnErrorWithItsButton) {
    visit([](Person& person) {
        person.click("#open-settings");
        person.click("#show-error");
        EXPECT_EQ(person.wait_for_dialog(), "Sample store\nThis is what an error looks like.");
        person.press("Close");
        const std::string answer = "document.querySelector('#client-answer').textContent";
        EXPECT_TRUE(person.sees(answer + " === 'You pressed \"Close\".'"));
        person.click("#show-error");
        ASSERT_NE(person.wait_for_dialog(), "");
        person.dismiss();
        EXPECT_TRUE(person.sees(answer + ".includes('without its button')"));
    });
}

TEST_F(StoreTest, SettingsMenuReloadsThePage) {
    visit([](Person& person) {
        person.read("window.isOld = true");
        person.click("#open-settings");
        person.click("#client-settings");
        EXPECT_THAT(person.wait_for_menu(), Contains("Reload the page"));
        person.choose("Reload the page");
        ASSERT_TRUE(person.sees("window.isOld === undefined"));
        EXPECT_TRUE(person.sees("document.querySelectorAll('.card.mine').length === 3"));
        EXPECT_EQ(person.read("document.querySelector('#nothing').textContent"),
                  "No application answers to that.");
        person.click(card("atlas", ".subscribe"));
        EXPECT_TRUE(person.sees("store.mine.includes('atlas')"));
    });
}

TEST_F(StoreTest, AccountMenuShowsTheAccounts) {
    visit([](Person& person) {
        person.click("#account");
        person.click("[data-tell=showAccounts]");
        EXPECT_THAT(
            person.wait_for_dialog(),
            AllOf(StartsWith("Accounts\n"), HasSubstr(std::string("(") + g_get_user_name() + ")")));
        person.press("Close");
        EXPECT_FALSE(person.has_dialog());
    });
}

}  // namespace
}  // namespace kestrel::testing
