// The arguments of the page's callbacks. Applications, requests and images have separate tests.
#include "workbench/answers/actions.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "jsapi/method_table.h"
#include "tests/support/main_loop.h"
#include "tests/support/script_context.h"
#include "tests/workbench/answers/fake_services.h"
#include "workbench/answers/commands.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class Actions : public ::testing::Test {
  protected:
    // The arguments of the page's callback `take` as JSON, or "no answer".
    std::string answer(std::string_view name, std::vector<std::string> strings,
                       std::vector<int> ints = {}) {
        const auto command = std::ranges::find(kCommands, name, &Command::name);
        const Request request({std::move(ints), std::move(strings)});
        got = "no answer";
        const std::string callback =
            command->calls_back() ? request.text(static_cast<std::size_t>(command->callback)) : "";
        command->action(fakes.services, request, Reply(callback, [this](const Answer& given) {
                            const ScriptContext page;
                            page.text_of(
                                "var got; function take(...values) {"
                                "  got = JSON.stringify(values); }");
                            page.text_of("(" + given.callback + ")()");
                            got = page.text_of("got");
                            return true;
                        }));
        return got;
    }
    std::string path(const std::string& name) const { return fakes.directory.path() + "/" + name; }

    FakeServices fakes;
    std::string got;
};

TEST_F(Actions, StoresItems) {
    EXPECT_EQ(answer("getItem", {"key", "take"}), "[null]");
    EXPECT_EQ(answer("setItem", {"key", "a \"value\"\n", "take"}), "[true]");
    EXPECT_EQ(answer("getItem", {"key", "take"}), R"(["a \"value\"\n"])");
    EXPECT_EQ(answer("setItem", {"key", "", ""}), "no answer");
    EXPECT_EQ(answer("getItem", {"key", "take"}), R"([""])");
}

TEST_F(Actions, RefusesItemsTooLongToSendBack) {
    answer("setItem", {"key", "old", ""});
    EXPECT_EQ(answer("setItem", {"key", std::string(kMaxInboundPayload, 'x'), "take"}), "[false]");
    EXPECT_EQ(answer("setItem", {"key", std::string(kMaxInboundPayload / 4, '"'), "take"}),
              "[true]");
    EXPECT_EQ(answer("setItem", {"key", std::string(kMaxInboundPayload / 2, '"'), "take"}),
              "[false]");
    EXPECT_EQ(fakes.database.item("key")->size(), kMaxInboundPayload / 4);
}

TEST_F(Actions, StoresSubscriptionsInTheUsersOrder) {
    EXPECT_EQ(answer("subscribe", {"a", "take"}), R"([["a"]])");
    EXPECT_EQ(answer("subscribe", {"b", "take"}), R"([["a","b"]])");
    EXPECT_EQ(answer("subscribe", {"a", "take"}), R"([["a","b"]])");
    EXPECT_EQ(answer("updateSubPosition", {"b", "0"}), "no answer");
    EXPECT_THAT(answer("getInstalledApps", {"take"}), HasSubstr(R"("subscriptions":["b","a"])"));
    EXPECT_EQ(answer("unsubscribe", {"b", "take"}), R"([["a"]])");
    EXPECT_EQ(answer("unsubscribe", {"b", "take"}), R"([["a"]])");
}

TEST_F(Actions, TreatsAnInvalidPositionAsTheFirst) {
    for (const char* id : {"a", "b", "c"}) answer("subscribe", {id, ""});
    answer("updateSubPosition", {"c", "soon"});
    EXPECT_THAT(fakes.database.subscriptions(), ElementsAre("c", "a", "b"));
    answer("updateSubPosition", {"c", "-1"});
    EXPECT_THAT(fakes.database.subscriptions(), ElementsAre("c", "a", "b"));
}

TEST_F(Actions, RefusesToLaunchMissingAppsAndFiles) {
    EXPECT_EQ(answer("launchApp", {"no such app", "take"}),
              R"([{"started":false,"problem":"there is no application no such app on this )"
              R"(computer"}])");
    EXPECT_EQ(answer("launchResource", {"missing", "take"}),
              R"([{"started":false,"problem":"there is no file missing beside the page"}])");
    EXPECT_THAT(fakes.user_interface.questions, IsEmpty());
}

TEST_F(Actions, StartsNothingIfTheUserDeclines) {
    fakes.user_interface.agrees = false;
    std::ofstream(path("note.txt")) << "text";
    EXPECT_EQ(answer("launchResource", {"note.txt", "take"}),
              R"([{"started":false,"problem":"the user declined"}])");
    answer("openURL", {"https://store.example/"});
    ASSERT_EQ(fakes.user_interface.questions.size(), 2U);
    EXPECT_EQ(fakes.user_interface.questions[0].details, "file://" + path("note.txt"));
    EXPECT_EQ(fakes.user_interface.questions[1].details, "https://store.example/");
}

TEST_F(Actions, RecoloursFilesInThePagesDirectoryAndDataUris) {
    const std::string square =
        "<svg xmlns='http://www.w3.org/2000/svg' width='2' height='2'>"
        "<rect width='2' height='2'/></svg>";
    std::ofstream(path("square.svg")) << square;
    const auto png = HasSubstr(R"([{"image":"data:image/png;base64,)");
    EXPECT_THAT(answer("recolorImage", {"square.svg", "take"}, {300, -5, 7}), png);
    EXPECT_THAT(answer("recolorImage", {"data:image/svg+xml," + square, "take"}, {0, 0, 0}), png);
    EXPECT_EQ(answer("recolorImage", {"missing", "take"}, {0, 0, 0}),
              R"([{"image":"","problem":"there is no file missing beside the page"}])");
    EXPECT_THAT(answer("recolorImage", {"data:,text", "take"}, {0, 0, 0}),
                StartsWith(R"([{"image":"","problem":")"));
}

TEST_F(Actions, AnswersAnInvalidWebRequestWithAnError) {
    answer("ajax", {"ftp://store.example/", "GET", "", "", "7", "take"});
    run_main_loop_until([&] { return got != "no answer"; });
    EXPECT_THAT(got, StartsWith(R"(["7","0",")"));
}

TEST_F(Actions, ReturnsUrisOnlyOfFilesInThePagesDirectory) {
    std::filesystem::create_directory(path("a b"));
    std::ofstream(path("a b/c")) << "text";
    EXPECT_EQ(answer("getFileUri", {"a b/c", "take"}), "[\"file://" + path("a%20b/c") + "\"]");
    EXPECT_EQ(answer("getFileUri", {"missing", "take"}), R"([""])");
    EXPECT_EQ(answer("getFileUri", {"../", "take"}), R"([""])");
    EXPECT_EQ(answer("getFileUri", {"/etc/passwd", "take"}), R"([""])");
    fakes.services.page_uri = "http://store.example/page.html";
    EXPECT_EQ(answer("getFileUri", {"c", "take"}), R"([""])");
}

TEST_F(Actions, AnswersErrorDialogWithThePressedButton) {
    EXPECT_EQ(answer("errorDialog", {"Title", "Details", "text", "Close", "take"}), R"(["Close"])");
    ASSERT_EQ(fakes.user_interface.reports.size(), 1U);
    EXPECT_EQ(fakes.user_interface.reports[0].title, "Title");
    EXPECT_EQ(fakes.user_interface.reports[0].details, "Details");
    EXPECT_EQ(fakes.user_interface.reports[0].text, "text");
    fakes.user_interface.agrees = false;
    EXPECT_EQ(answer("errorDialog", {"", "", "text", "Close", "take"}), R"([""])");
}

TEST_F(Actions, AnswersErrorDialogOnlyWhenItIsClosed) {
    fakes.user_interface.delays_answers = true;
    EXPECT_EQ(answer("errorDialog", {"", "", "text", "Close", "take"}), "no answer");
    fakes.user_interface.release();
    EXPECT_EQ(got, R"(["Close"])");
}

TEST_F(Actions, ShowsSettingsMenuAtItsArea) {
    answer("settingsMenu", {}, {10, 20, 30, -40});
    EXPECT_EQ(fakes.user_interface.menu.left, 10);
    EXPECT_EQ(fakes.user_interface.menu.top, 20);
    EXPECT_EQ(fakes.user_interface.menu.width, 30);
    EXPECT_EQ(fakes.user_interface.menu.height, -40);
}

TEST_F(Actions, ShowsAccountsTraceMessagesAndTheDefaultStore) {
    answer("showAccounts", {});
    answer("writeTraceMessage", {"a line"});
    EXPECT_THAT(fakes.user_interface.shown, ElementsAre("local", "the page says: a line"));
    answer("openDefaultStore", {});
    EXPECT_EQ(fakes.user_interface.default_stores, 1);
}

TEST_F(Actions, ReturnsCapabilitiesToTheFirstSentText) {
    EXPECT_THAT(answer("getCapabilities", {"take", "page"}),
                HasSubstr(R"("host":"kestrel-workbench")"));
}

TEST_F(Actions, ReturnsTheStoresAddress) {
    EXPECT_THAT(answer("getStoreDetails", {"take"}), HasSubstr(path("page.html")));
}

TEST_F(Actions, ReturnsTheUsersNameAndAccount) {
    EXPECT_NE(answer("getUserDisplayName", {"take"}), R"([""])");
    EXPECT_THAT(answer("getAccountsAsync", {"take"}), StartsWith(R"([[{"id":"local","name":")"));
}

// Missing items are read as empty.
TEST_F(Actions, AnswersNothingToMessagesWithoutItems) {
    for (const Command& command : kCommands) {
        if (command.action == nullptr) continue;
        EXPECT_EQ(answer(command.name, {}), "no answer") << command.name;
    }
}

TEST(Commands, MatchTheNumberOfFunctionsThatSendThem) {
    for (const Command& command : kCommands) {
        EXPECT_EQ(std::ranges::count(kPageMethods, command.name, &PageMethod::member),
                  command.functions)
            << command.name;
    }
}

}  // namespace
}  // namespace kestrel::testing
