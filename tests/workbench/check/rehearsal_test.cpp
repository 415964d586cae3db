#include "workbench/check/rehearsal.h"

#include <gmock/gmock.h>

namespace kestrel::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

const Command& command(std::string_view name) {
    return *std::ranges::find(kCommands, name, &Command::name);
}

const Request kNothing({});

void begin(Rehearsal& rehearsal) { rehearsal.on_command(command("ready"), kNothing); }

void report(Rehearsal& rehearsal, const std::string& trace) {
    rehearsal.on_command(command("writeTraceMessage"), Request({{}, {trace}}));
}

// Everything that has to happen, but for what is left out.
Rehearsal rehearse(std::string_view never_arrives = "", std::string_view never_called_back = "") {
    Rehearsal rehearsal;
    begin(rehearsal);
    std::string names;
    for (const Command& each : kCommands) {
        if (each.name == never_arrives) continue;
        for (int i = 0; i < each.functions; ++i) rehearsal.on_command(each, kNothing);
        if (!each.calls_back() || each.name == never_called_back) continue;
        names += (names.empty() ? "\"" : ",\"") + std::string(each.name) + '"';
    }
    if (never_arrives != "writeTraceMessage") report(rehearsal, "{\"calledBack\":[" + names + "]}");
    return rehearsal;
}

TEST(Rehearsal, MissesNothingWhenEverythingHappened) {
    const Rehearsal rehearsal = rehearse();
    EXPECT_TRUE(rehearsal.is_over());
    EXPECT_THAT(rehearsal.failures(), IsEmpty());
}

TEST(Rehearsal, BeginsOnceWhenThePageIsReady) {
    Rehearsal rehearsal;
    EXPECT_EQ(rehearsal.on_command(command("siteLoaded"), kNothing), "");
    EXPECT_EQ(rehearsal.on_command(command("ready"), kNothing),
              "window.callEveryFunction && window.callEveryFunction();");
    EXPECT_EQ(rehearsal.on_command(command("ready"), kNothing), "");
}

TEST(Rehearsal, MissesThePagesBeginning) {
    EXPECT_THAT(Rehearsal().failures(), ElementsAre("the page never said that it is ready"));
}

TEST(Rehearsal, MissesEachFunctionThatDidNotArrive) {
    for (const Command& each : kCommands) {
        const std::string line = std::string(each.name) + " reached the host 0 of " +
                                 std::to_string(each.functions) + " times";
        EXPECT_THAT(rehearse(each.name).failures(), Contains(line));
    }
}

TEST(Rehearsal, MissesEachCallbackThatDidNotRun) {
    for (const Command& each : kCommands) {
        if (!each.calls_back()) continue;
        EXPECT_THAT(rehearse("", each.name).failures(),
                    ElementsAre(std::string(each.name) + " was not called back"));
    }
}

TEST(Rehearsal, CountsBothFunctionsThatSendTheSameCommand) {
    Rehearsal rehearsal = rehearse("refresh");
    rehearsal.on_command(command("refresh"), kNothing);
    EXPECT_THAT(rehearsal.failures(), ElementsAre("refresh reached the host 1 of 2 times"));
    rehearsal.on_command(command("refresh"), kNothing);
    EXPECT_THAT(rehearsal.failures(), IsEmpty());
}

TEST(Rehearsal, IsNotOverBeforeEveryAnswerIsConfirmed) {
    Rehearsal rehearsal = rehearse();
    rehearsal.on_answer_sent();
    EXPECT_FALSE(rehearsal.is_over());
    EXPECT_THAT(rehearsal.failures(), ElementsAre("answers not confirmed: 1"));
    rehearsal.on_answer_confirmed();
    EXPECT_TRUE(rehearsal.is_over());
}

TEST(Rehearsal, IsNotOverWithoutAReport) {
    for (const char* trace : {"", "a trace line", "{", "[]", "null", R"({"calledBack":1})",
                              R"({"called":["getItem"]})"}) {
        Rehearsal rehearsal;
        begin(rehearsal);
        report(rehearsal, trace);
        EXPECT_FALSE(rehearsal.is_over()) << trace;
        EXPECT_THAT(rehearsal.failures(), Contains("the page did not report which callbacks ran"));
    }
}

TEST(Rehearsal, PassesOverWhatIsNoNameInAReport) {
    Rehearsal rehearsal;
    begin(rehearsal);
    report(rehearsal, R"({"calledBack":[1,null,{},["getItem"],"getItem"]})");
    EXPECT_TRUE(rehearsal.is_over());
    EXPECT_THAT(rehearsal.failures(), Not(Contains("getItem was not called back")));
}

}  // namespace
}  // namespace kestrel::testing
