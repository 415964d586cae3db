#include "host/rehearsal.h"

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

// Everything that has to happen, but for what is left out.
Rehearsal rehearse(std::string_view never_arrives = "", std::string_view never_called_back = "") {
    Rehearsal rehearsal;
    rehearsal.begin();
    std::string report;
    for (const Command& each : kCommands) {
        if (each.name == never_arrives) continue;
        for (int i = 0; i < each.functions; ++i) rehearsal.note_command(each);
        if (!each.calls_back || each.name == never_called_back) continue;
        report += (report.empty() ? "\"" : ",\"") + std::string(each.name) + '"';
    }
    rehearsal.take_report("{\"calledBack\":[" + report + "]}");
    return rehearsal;
}

TEST(Rehearsal, MissesNothingWhenEverythingHappened) {
    const Rehearsal rehearsal = rehearse();
    EXPECT_TRUE(rehearsal.is_over());
    EXPECT_THAT(rehearsal.missing(), IsEmpty());
}

TEST(Rehearsal, MissesThePagesBeginning) {
    EXPECT_THAT(Rehearsal().missing(), ElementsAre("the page never said that it is ready"));
}

TEST(Rehearsal, MissesEachFunctionThatDidNotArrive) {
    for (const Command& each : kCommands) {
        const std::string line = std::string(each.name) + " reached the host 0 of " +
                                 std::to_string(each.functions) + " times";
        EXPECT_THAT(rehearse(each.name).missing(), Contains(line));
    }
}

TEST(Rehearsal, MissesEachCallbackThatDidNotRun) {
    for (const Command& each : kCommands) {
        if (!each.calls_back) continue;
        EXPECT_THAT(rehearse("", each.name).missing(),
                    ElementsAre(std::string(each.name) + " was not called back"));
    }
}

TEST(Rehearsal, CountsBothFunctionsThatSendTheSameCommand) {
    Rehearsal rehearsal = rehearse("refresh");
    rehearsal.note_command(command("refresh"));
    EXPECT_THAT(rehearsal.missing(), ElementsAre("refresh reached the host 1 of 2 times"));
    rehearsal.note_command(command("refresh"));
    EXPECT_THAT(rehearsal.missing(), IsEmpty());
}

TEST(Rehearsal, IsNotOverBeforeEveryAnswerIsConfirmed) {
    Rehearsal rehearsal = rehearse();
    rehearsal.note_answer_sent();
    EXPECT_FALSE(rehearsal.is_over());
    EXPECT_THAT(rehearsal.missing(), ElementsAre("answers not confirmed: 1"));
    rehearsal.note_answer_confirmed();
    EXPECT_TRUE(rehearsal.is_over());
}

TEST(Rehearsal, IsNotOverWithoutAReport) {
    for (const char* trace : {"", "a trace line", "{", "[]", "null", R"({"calledBack":1})",
                              R"({"called":["getItem"]})"}) {
        Rehearsal rehearsal;
        rehearsal.begin();
        rehearsal.take_report(trace);
        EXPECT_FALSE(rehearsal.is_over()) << trace;
        EXPECT_THAT(rehearsal.missing(), Contains("the page did not report which callbacks ran"));
    }
}

TEST(Rehearsal, PassesOverWhatIsNoNameInAReport) {
    Rehearsal rehearsal;
    rehearsal.begin();
    rehearsal.take_report(R"({"calledBack":[1,null,{},["getItem"],"getItem"]})");
    EXPECT_TRUE(rehearsal.is_over());
    EXPECT_THAT(rehearsal.missing(), Not(Contains("getItem was not called back")));
}

}  // namespace
}  // namespace kestrel::testing
