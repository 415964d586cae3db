// The sample store in the workbench's window, used as a person would use it; what has come of it is
// looked for in the database, the file, the log and the transcript.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "log/zynlog.h"
#include "tests/support/file_content.h"
#include "tests/support/log_recorder.h"
#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/program.h"
#include "tests/workbench/store/store_file.h"
#include "tests/workbench/store/visit.h"
#include "workbench/desktop/store_database.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;
using ::testing::StartsWith;

constexpr const char* kStartedProgram = "kestrel-sample.desktop";
constexpr const char* kAccent = "#d1297f";

std::string shown_ids() {
    return "[...document.querySelectorAll('.card')].map((card) => card.dataset.id).join()";
}

std::string shows_in_order(const std::string& ids) { return shown_ids() + " === '" + ids + "'"; }

std::string has_toast(const std::string& text) {
    return "[...document.querySelectorAll('.toast')].some((toast) => toast.textContent.includes('" +
           text + "'))";
}

class StoreTest : public ::testing::Test {
  protected:
    // A program that writes a file, on the menu of this user's desktop.
    static void SetUpTestSuite() {
        const std::string applications = std::string(g_get_user_data_dir()) + "/applications";
        fs::create_directories(applications);
        std::ofstream(applications + "/" + kStartedProgram)
            << "[Desktop Entry]\nType=Application\nName=Sample\nComment=Leaves a trace\nExec=touch "
            << trace_of_started_program() << "\n";
    }

    static std::string trace_of_started_program() {
        return std::string(g_get_home_dir()) + "/started";
    }

    void SetUp() override {
        clear_log();
        fs::remove(trace_of_started_program());
    }

    // A person who has the store before the eyes does something in the workbench's window.
    void visit(const std::function<void(Person&)>& act) {
        Options options;
        options.page_uri = "file://" + store_file("index.html");
        options.resources = file_content(store_file("resources.json"));
        options.extension_directory = EXTENSION_DIRECTORY;
        options.data = data.path();
        transcript = testing::visit(options, [&](Person& person) {
            const bool has_store =
                person.sees("document.querySelectorAll('.card.mine').length > 0");
            ASSERT_TRUE(has_store) << "there is no store";
            act(person);
        });
    }

    std::vector<std::string> kept_order() const { return database().subscriptions(); }
    std::optional<std::string> kept_item(const std::string& key) const {
        return database().item(key);
    }

    // What another workbench makes of the same data, without a window.
    int check_in_second_program(const std::string& script) const {
        const std::string file = files.path() + "/script.js";
        std::ofstream(file) << script;
        Program program({"--headless", "--page", store_file("index.html"), "--data", data.path(),
                         "--script", file},
                        files.path(), files.path());
        const int status = program.wait_for_end();
        if (status != 0) ADD_FAILURE() << program.output();
        return status;
    }

    TemporaryDirectory data;
    TemporaryDirectory files;
    std::string transcript;  // of the last visit

  private:
    StoreDatabase database() const {
        return StoreDatabase(data.path() + "/" + std::string(kStoreDatabaseFile));
    }
};

bool is_logged(const std::string& text) {
    return std::ranges::any_of(logged(), [&](const LogLine& line) {
        return line.log_class == kLogKestrel && line.text == text;
    });
}

// The selector of an application's card, or of a part of it.
std::string card(const std::string& id, const std::string& part = "") {
    return "[data-id=\"" + id + "\"] " + part;
}
std::string category(const std::string& name) { return "[data-category=" + name + "]"; }

TEST_F(StoreTest, ASubscriptionIsKeptAndItsEndToo) {
    visit([this](Person& person) {
        person.click(card("atlas", ".subscribe"));
        ASSERT_TRUE(person.sees("store.mine.includes('atlas')"));
        EXPECT_THAT(kept_order(), ElementsAre("letters", "agenda", "notebook", "atlas"));
        person.click(card("agenda", ".unsubscribe"));
        ASSERT_TRUE(person.sees("!store.mine.includes('agenda')"));
        EXPECT_THAT(kept_order(), ElementsAre("letters", "notebook", "atlas"));
    });
}

TEST_F(StoreTest, AnApplicationIsDraggedToAnotherPlace) {
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

TEST_F(StoreTest, WhatIsDroppedWhereItWasTellsTheHostNothing) {
    visit([](Person& person) {
        person.click(category("mine"));
        ASSERT_TRUE(person.sees(shows_in_order("letters,agenda,notebook")));
        person.drag(card("letters", "h3"), card("letters", ".app-icon"));
        // What comes later is seen when all of the drag has been.
        person.click(category("discover"));
        EXPECT_TRUE(person.sees("store.category === 'discover'"));
    });
    EXPECT_THAT(transcript, Not(HasSubstr(" updateSubPosition ")));
}

TEST_F(StoreTest, SettingsAndANoteAreKept) {
    visit([this](Person& person) {
        person.click("#open-settings");
        ASSERT_TRUE(person.sees("document.querySelectorAll('.coloured').length === 5"));
        person.click("[name=theme][value=dark]");
        person.click(std::string("[data-color=\"") + kAccent + "\"]");
        person.type("#note", "Remember 3 letters");
        person.click("#themes");
        EXPECT_TRUE(run_main_loop_until([this] { return kept_item("note").has_value(); }));
        EXPECT_THAT(kept_item("note"), Optional(std::string("Remember 3 letters")));
        EXPECT_THAT(kept_item("theme"), Optional(std::string("dark")));
        EXPECT_THAT(kept_item("accent"), Optional(std::string(kAccent)));
    });
}

TEST_F(StoreTest, TheNextRunFindsEverythingAsItWasLeft) {
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

TEST_F(StoreTest, ASecondWorkbenchSeesAndChangesTheSameData) {
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

TEST_F(StoreTest, AProgramOfThisComputerIsStartedIfTheUserAgrees) {
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

TEST_F(StoreTest, AProgramIsNotStartedIfTheUserDeclines) {
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

TEST_F(StoreTest, WhatTheComputerDoesNotHaveIsToldAtOnce) {
    visit([](Person& person) {
        person.click(card("letters", ".launch"));
        EXPECT_TRUE(person.sees(has_toast("Letters was not started: there is no application")));
        EXPECT_FALSE(person.has_dialog());
    });
}

TEST_F(StoreTest, AnAddressAndADocumentAreOpenedOnlyIfTheUserAgrees) {
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

TEST_F(StoreTest, AnErrorIsReportedWithItsButton) {
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

TEST_F(StoreTest, TheSettingsMenuAppearsAndReloadsThePage) {
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

TEST_F(StoreTest, TheAccountMenuShowsTheAccounts) {
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

TEST_F(StoreTest, ASearchShowsWhatAnswersToIt) {
    visit([](Person& person) {
        person.type("#search", "meridian maps");
        EXPECT_TRUE(person.sees(shows_in_order("atlas")));
        person.type("#search", "x");
        EXPECT_TRUE(person.sees("!document.querySelector('#nothing').hidden"));
    });
}

TEST_F(StoreTest, TheWindowIsPicturedInLightAndDark) {
    visit([](Person& person) {
        for (const std::string theme : {"light", "dark"}) {
            person.click("#open-settings");
            person.click("[name=theme][value=" + theme + "]");
            person.click("#settings .primary");
            ASSERT_TRUE(person.sees("!document.querySelector('#settings').open"));
            person.look_at("19 setItem");
            EXPECT_TRUE(person.save_picture(SCREENSHOTS "/workbench-" + theme + ".png"));
        }
    });
}

TEST_F(StoreTest, ATraceMessageIsALineOfTheLogAndOfTheTranscript) {
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
