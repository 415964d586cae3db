#include "host/answers.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "host/commands.h"
#include "jsapi/method_table.h"
#include "tests/support/script_context.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Answers : public ::testing::Test {
  protected:
    // What reaches a page's callback `take`, as JSON; "no answer" if there is none.
    std::string answer(std::string_view name, std::vector<std::string> strings,
                       std::vector<int> ints = {}) {
        const auto command = std::ranges::find(kCommands, name, &Command::name);
        const auto given = command->answerer(state, Request({std::move(ints), std::move(strings)}));
        if (!given) return "no answer";
        const ScriptContext page;
        page.text_of("var got; function take(...values) { got = JSON.stringify(values); }");
        page.text_of("(" + given->callback + ")()");
        return page.text_of("got");
    }

    TemporaryDirectory directory;
    StoreState state{"file://" + directory.path() + "/page.html"};
};

TEST_F(Answers, ToItemsAreWhatWasSetOrNull) {
    EXPECT_EQ(answer("getItem", {"key", "take"}), "[null]");
    EXPECT_EQ(answer("setItem", {"key", "a \"value\"\n", "take"}), "[true]");
    EXPECT_EQ(answer("getItem", {"key", "take"}), R"(["a \"value\"\n"])");
    EXPECT_EQ(answer("setItem", {"key", "", ""}), "no answer");
    EXPECT_EQ(answer("getItem", {"key", "take"}), R"([""])");
}

TEST_F(Answers, ToSubscriptionsAreTheUsersApplicationsInOrder) {
    EXPECT_EQ(answer("getInstalledApps", {"take"}), "[[]]");
    EXPECT_EQ(answer("subscribe", {"a", "take"}), R"([["a"]])");
    EXPECT_EQ(answer("subscribe", {"b", "take"}), R"([["a","b"]])");
    EXPECT_EQ(answer("subscribe", {"a", "take"}), R"([["a","b"]])");
    EXPECT_EQ(answer("updateSubPosition", {"b", "0"}), "no answer");
    EXPECT_EQ(answer("getInstalledApps", {"take"}), R"([["b","a"]])");
    EXPECT_EQ(answer("unsubscribe", {"b", "take"}), R"([["a"]])");
    EXPECT_EQ(answer("unsubscribe", {"b", "take"}), R"([["a"]])");
}

TEST_F(Answers, ToLaunchesAreTrueForAnyId) {
    EXPECT_EQ(answer("launchApp", {"a", "take"}), "[true]");
    EXPECT_EQ(answer("launchResource", {"a", "take"}), "[true]");
    EXPECT_EQ(answer("launchApp", {"", "take"}), "[false]");
}

TEST_F(Answers, ToARelayedRequestTellTheRequest) {
    const std::string given = answer("ajax", {"u", "GET", "h", "b", "7", "take"});
    EXPECT_THAT(given, HasSubstr(R"(["7","200","OK")"));
    EXPECT_THAT(given, HasSubstr(R"({\"url\":\"u\",\"method\":\"GET\",\"headers\":\"h\",)"
                                 R"(\"body\":\"b\"})"));
}

TEST_F(Answers, ToFileUrisAreForFilesBesideThePageOnly) {
    std::filesystem::create_directory(directory.path() + "/a b");
    std::ofstream(directory.path() + "/a b/c") << "text";
    EXPECT_EQ(answer("getFileUri", {"a b/c", "take"}),
              "[\"file://" + directory.path() + "/a%20b/c\"]");
    EXPECT_EQ(answer("getFileUri", {"missing", "take"}), R"([""])");
    EXPECT_EQ(answer("getFileUri", {"../", "take"}), R"([""])");
    EXPECT_EQ(answer("getFileUri", {"/etc/passwd", "take"}), R"([""])");
    state = StoreState("http://store.example/page.html");
    EXPECT_EQ(answer("getFileUri", {"c", "take"}), R"([""])");
}

TEST_F(Answers, ToRecolouringHaveTheColourWithinItsBounds) {
    EXPECT_THAT(answer("recolorImage", {"image", "take"}, {300, -5, 7}),
                HasSubstr("fill='rgb(255,0,7)'"));
}

TEST_F(Answers, ToTheErrorDialogAreItsButton) {
    EXPECT_EQ(answer("errorDialog", {"", "", "text", "Close", "take"}), R"(["Close"])");
}

TEST_F(Answers, ToCapabilitiesGoToTheSecondArgumentWhichTravelsFirst) {
    EXPECT_THAT(answer("getCapabilities", {"take", "page"}), HasSubstr(R"("host":"kestrel-host")"));
}

TEST_F(Answers, ToTheStoresDetailsHoldItsAddress) {
    EXPECT_THAT(answer("getStoreDetails", {"take"}), HasSubstr(directory.path() + "/page.html"));
}

TEST_F(Answers, ToTheUserAreNotEmpty) {
    EXPECT_NE(answer("getUserDisplayName", {"take"}), R"([""])");
    EXPECT_THAT(answer("getAccountsAsync", {"take"}), HasSubstr(R"("id":"local")"));
}

// Whatever a client leaves out is empty: nothing is read that is not there.
TEST_F(Answers, AreNoneToMessagesWithoutItems) {
    for (const Command& command : kCommands) {
        if (command.answerer == nullptr) continue;
        EXPECT_EQ(command.answerer(state, Request({})), std::nullopt) << command.name;
    }
}

TEST(Commands, AreSentByAsManyFunctionsAsTheTableSays) {
    for (const Command& command : kCommands) {
        EXPECT_EQ(std::ranges::count(kPageMethods, command.name, &PageMethod::member),
                  command.functions)
            << command.name;
    }
}

TEST(StoreState, MovesASubscriptionToAPlace) {
    StoreState state("");
    for (const char* id : {"a", "b", "c", "d"}) state.subscribe(id);
    EXPECT_TRUE(state.move("a", 2));
    EXPECT_THAT(state.subscriptions(), ElementsAre("b", "c", "a", "d"));
    EXPECT_TRUE(state.move("d", 1));
    EXPECT_THAT(state.subscriptions(), ElementsAre("b", "d", "c", "a"));
    EXPECT_TRUE(state.move("b", 99));
    EXPECT_THAT(state.subscriptions(), ElementsAre("d", "c", "a", "b"));
    EXPECT_FALSE(state.move("c", 1));
    EXPECT_FALSE(state.move("x", 0));
    EXPECT_THAT(state.subscriptions(), ElementsAre("d", "c", "a", "b"));
}

}  // namespace
}  // namespace kestrel::testing
