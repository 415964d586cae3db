// The sample store in the workbench's window, driven by synthetic events; results are checked in
// the database, the log and the transcript.
#include <gmock/gmock.h>

#include <algorithm>

#include "log/zynlog.h"
#include "tests/support/log_recorder.h"
#include "tests/support/main_loop.h"
#include "tests/workbench/store/store_fixture.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

constexpr const char* kAccent = "#d1297f";

std::string shown_ids() {
    return "[...document.querySelectorAll('.card')].map((card) => card.dataset.id).join()";
}

std::string shows_in_order(const std::string& ids) { return shown_ids() + " === '" + ids + "'"; }

bool is_logged(const std::string& text) {
    return std::ranges::any_of(logged(), [&](const LogLine& line) {
        return line.log_class == kLogKestrel && line.text == text;
    });
}

TEST_F(StoreTest, StoresSubscribingAndUnsubscribing) {
    visit([this](Person& person) {
        person.click(card("atlas", ".subscribe"));
        ASSERT_TRUE(person.sees("store.mine.includes('atlas')"));
        EXPECT_THAT(kept_order(), ElementsAre("letters", "agenda", "notebook", "atlas"));
        person.click(card("agenda", ".unsubscribe"));
        ASSERT_TRUE(person.sees("!store.mine.includes('agenda')"));
        EXPECT_THAT(kept_order(), ElementsAre("letters", "notebook", "atlas"));
    });
}

TEST_F(StoreTest, DraggingAnApplicationMovesIt) {
    visit([this](Person& person) {
        person.click(category("mine"));
        ASSERT_TRUE(person.sees(shows_in_order("letters,agenda,notebook")));
        person.drag(card("letters", "h3"), card("notebook", "h3"));
        EXPECT_TRUE(person.sees(shows_in_order("agenda,notebook,letters")));
        EXPECT_TRUE(run_main_loop_until([this] { return kept_order().back() == "letters"; }));
        EXPECT_THAT(kept_order(), ElementsAre("agenda", "notebook", "letters"));
    });
    const std::string move = " updateSubPosition ";
    EXPECT_THAT(transcript, HasSubstr(move));
    EXPECT_EQ(transcript.find(move), transcript.rfind(move)) << "one message for one drop";
}

TEST_F(StoreTest, DroppingAtTheSamePlaceSendsNothing) {
    visit([](Person& person) {
        person.click(category("mine"));
        ASSERT_TRUE(person.sees(shows_in_order("letters,agenda,notebook")));
        person.drag(card("letters", "h3"), card("letters", ".app-icon"));
        // A later call arrives after everything that the drag sent.
        person.click(category("discover"));
        EXPECT_TRUE(person.sees("store.category === 'discover'"));
    });
    EXPECT_THAT(transcript, Not(HasSubstr(" updateSubPosition ")));
}

TEST_F(StoreTest, StoresSettingsAndANote) {
    visit([this](Person& person) {
        person.click("#open-settings");
        ASSERT_TRUE(person.sees("document.querySelectorAll('.coloured').length === 5"));
        person.click("[name=theme][value=dark]");
        person.click(std::string("[data-color=\"") + kAccent + "\"]");
        person.type("#note", "Remember 3 letters");
        person.click("#themes");
        EXPECT_TRUE(run_main_loop_until([this] {
            return kept_item("note") == std::optional<std::string>("Remember 3 letters");
        }));
        EXPECT_THAT(kept_item("theme"), Optional(std::string("dark")));
        EXPECT_THAT(kept_item("accent"), Optional(std::string(kAccent)));
    });
}

TEST_F(StoreTest, KeepsEverythingForTheNextRun) {
    visit([](Person& person) {
        person.click(category("mine"));
        person.drag(card("notebook", "h3"), card("letters", "h3"));
        ASSERT_TRUE(person.sees(shows_in_order("notebook,letters,agenda")));
        person.click("#open-settings");
        person.click("[name=theme][value=dark]");
        ASSERT_TRUE(person.sees("document.documentElement.dataset.theme === 'dark'"));
    });
    visit([](Person& person) {
        EXPECT_TRUE(person.sees("document.documentElement.dataset.theme === 'dark'"));
        person.click(category("mine"));
        EXPECT_TRUE(person.sees(shows_in_order("notebook,letters,agenda")));
    });
}

TEST_F(StoreTest, SharesDataWithASecondWorkbench) {
    visit([this](Person& person) {
        person.click(card("atlas", ".subscribe"));
        ASSERT_TRUE(person.sees("store.mine.includes('atlas')"));
        EXPECT_EQ(
            check_in_second_program("await workbench.until(() => store.mine.includes('atlas'),"
                                    "    'Atlas is mine here, too');"
                                    "await host.ask('subscribe', 'easel');"),
            0);
        person.click("#refresh");
        EXPECT_TRUE(person.sees("store.mine.at(-1) === 'easel'"));
    });
}

TEST_F(StoreTest, SearchShowsMatchingApplications) {
    visit([](Person& person) {
        person.type("#search", "meridian maps");
        EXPECT_TRUE(person.sees(shows_in_order("atlas")));
        person.type("#search", "x");
        EXPECT_TRUE(person.sees("!document.querySelector('#nothing').hidden"));
    });
}

TEST_F(StoreTest, SavesScreenshotsInLightAndDark) {
    visit([](Person& person) {
        for (const std::string theme : {"light", "dark"}) {
            person.click("#open-settings");
            person.click("[name=theme][value=" + theme + "]");
            person.click("#settings .primary");
            ASSERT_TRUE(person.sees("!document.querySelector('#settings').open"));
            person.select_message("19 setItem");
            EXPECT_TRUE(person.save_screenshot(SCREENSHOTS "/workbench-" + theme + ".png"));
        }
    });
}

TEST_F(StoreTest, WritesATraceMessageToLogAndTranscript) {
    const std::string line = "A line for the trace";
    visit([&](Person& person) {
        person.click("#toggle-sheet");
        person.click("[data-name=writeTraceMessage] button");
        EXPECT_TRUE(run_main_loop_until([&] { return is_logged(line); }));
    });
    EXPECT_THAT(transcript, HasSubstr(line));
}

}  // namespace
}  // namespace kestrel::testing
