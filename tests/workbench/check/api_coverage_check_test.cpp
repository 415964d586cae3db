#include "workbench/check/api_coverage_check.h"

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

void begin(ApiCoverageCheck& check) { check.on_command(command("ready"), kNothing); }

void report(ApiCoverageCheck& check, const std::string& trace) {
    check.on_command(command("writeTraceMessage"), Request({{}, {trace}}));
}

// Runs a complete check, except for these two.
ApiCoverageCheck run_check(std::string_view never_arrives = "",
                           std::string_view never_called_back = "") {
    ApiCoverageCheck check;
    begin(check);
    std::string names;
    for (const Command& each : kCommands) {
        if (each.name == never_arrives) continue;
        for (int i = 0; i < each.functions; ++i) check.on_command(each, kNothing);
        if (!each.calls_back() || each.name == never_called_back) continue;
        names += (names.empty() ? "\"" : ",\"") + std::string(each.name) + '"';
    }
    if (never_arrives != "writeTraceMessage") report(check, "{\"calledBack\":[" + names + "]}");
    return check;
}

TEST(ApiCoverageCheck, SucceedsWhenAllFunctionsAndCallbacksRan) {
    const ApiCoverageCheck check = run_check();
    EXPECT_TRUE(check.is_over());
    EXPECT_THAT(check.failures(), IsEmpty());
}

TEST(ApiCoverageCheck, StartsOnceWhenThePageIsReady) {
    ApiCoverageCheck check;
    EXPECT_EQ(check.on_command(command("siteLoaded"), kNothing), "");
    EXPECT_EQ(check.on_command(command("ready"), kNothing),
              "window.callEveryFunction && window.callEveryFunction();");
    EXPECT_EQ(check.on_command(command("ready"), kNothing), "");
}

TEST(ApiCoverageCheck, ReportsAPageThatIsNeverReady) {
    EXPECT_THAT(ApiCoverageCheck().failures(), ElementsAre("the page never said that it is ready"));
}

TEST(ApiCoverageCheck, ReportsEachFunctionThatWasNotCalled) {
    for (const Command& each : kCommands) {
        const std::string line = std::string(each.name) + " reached the host 0 of " +
                                 std::to_string(each.functions) + " times";
        EXPECT_THAT(run_check(each.name).failures(), Contains(line));
    }
}

TEST(ApiCoverageCheck, ReportsEachCallbackThatDidNotRun) {
    for (const Command& each : kCommands) {
        if (!each.calls_back()) continue;
        EXPECT_THAT(run_check("", each.name).failures(),
                    ElementsAre(std::string(each.name) + " was not called back"));
    }
}

TEST(ApiCoverageCheck, CountsBothFunctionsThatSendTheSameCommand) {
    ApiCoverageCheck check = run_check("refresh");
    check.on_command(command("refresh"), kNothing);
    EXPECT_THAT(check.failures(), ElementsAre("refresh reached the host 1 of 2 times"));
    check.on_command(command("refresh"), kNothing);
    EXPECT_THAT(check.failures(), IsEmpty());
}

TEST(ApiCoverageCheck, WaitsForTheConfirmationOfEveryAnswer) {
    ApiCoverageCheck check = run_check();
    check.on_answer_sent();
    EXPECT_FALSE(check.is_over());
    EXPECT_THAT(check.failures(), ElementsAre("answers not confirmed: 1"));
    check.on_answer_confirmed();
    EXPECT_TRUE(check.is_over());
}

TEST(ApiCoverageCheck, WaitsForAValidReport) {
    for (const char* trace : {"", "a trace line", "{", "[]", "null", R"({"calledBack":1})",
                              R"({"called":["getItem"]})"}) {
        ApiCoverageCheck check;
        begin(check);
        report(check, trace);
        EXPECT_FALSE(check.is_over()) << trace;
        EXPECT_THAT(check.failures(), Contains("the page did not report which callbacks ran"));
    }
}

TEST(ApiCoverageCheck, IgnoresReportEntriesThatAreNotNames) {
    ApiCoverageCheck check;
    begin(check);
    report(check, R"({"calledBack":[1,null,{},["getItem"],"getItem"]})");
    EXPECT_TRUE(check.is_over());
    EXPECT_THAT(check.failures(), Not(Contains("getItem was not called back")));
}

}  // namespace
}  // namespace kestrel::testing
