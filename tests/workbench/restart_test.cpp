#include "workbench/restart.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace kestrel::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr const char* kProgram = "kestrel-workbench";

TEST(Restart, AddsTheNewLocaleAndKeepsTheOtherArguments) {
    EXPECT_THAT(arguments_with_locale({kProgram, "--page", "a.html", "-r", "r"}, "de"),
                ElementsAre(kProgram, "--locale", "de", "--page", "a.html", "-r", "r"));
    EXPECT_THAT(arguments_with_locale({kProgram}, "pt_BR"),
                ElementsAre(kProgram, "--locale", "pt_BR"));
}

TEST(Restart, RemovesEarlierLocalesInAnySpelling) {
    EXPECT_THAT(arguments_with_locale({kProgram, "--locale", "fr", "-p", "a.html", "--locale=it",
                                       "-l", "en", "--no-sandbox"},
                                      "de"),
                ElementsAre(kProgram, "--locale", "de", "-p", "a.html", "--no-sandbox"));
}

TEST(Restart, AddsNoLocaleForTheUsersOwn) {
    EXPECT_THAT(arguments_with_locale({kProgram, "--locale", "fr", "--page", "a.html"}, ""),
                ElementsAre(kProgram, "--page", "a.html"));
}

TEST(Restart, KeepsSimilarArguments) {
    EXPECT_THAT(arguments_with_locale({kProgram, "--page", "--locale.html", "--data=-l"}, ""),
                ElementsAre(kProgram, "--page", "--locale.html", "--data=-l"));
}

TEST(Restart, CopiesTheEnvironment) {
    setenv("KESTREL_RESTART_TEST", "before", 1);
    const std::vector<std::string> copy = copy_of_environment();
    setenv("KESTREL_RESTART_TEST", "after", 1);
    EXPECT_THAT(copy, Contains("KESTREL_RESTART_TEST=before"));
    unsetenv("KESTREL_RESTART_TEST");
}

TEST(Restart, RunsTheProgramWithTheGivenArgumentsAndEnvironment) {
    EXPECT_EXIT(restart({kProgram, "--gtest_list_tests"}, copy_of_environment()),
                ::testing::ExitedWithCode(0), "");
    // GoogleTest reads its filter from the environment, too.
    EXPECT_EXIT(restart({kProgram}, {"GTEST_FILTER=None"}), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kestrel::testing
