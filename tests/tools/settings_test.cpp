// The commands of the built kestrel-log that show and change settings.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/mount.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/log/bytes.h"
#include "tests/log/machine.h"
#include "tests/tools/program.h"

namespace {

using kestrel::testing::home;
using kestrel::testing::kestrel_log;
using kestrel::testing::Outcome;
using kestrel::testing::record_bytes;
using kestrel::testing::u32_at;
using testing::ContainsRegex;
using testing::HasSubstr;

// Successful changes print nothing.
void expect_silent_success(const Outcome& outcome) {
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "");
}

class KestrelLog : public testing::Test {
  protected:
    KestrelLog() { kestrel_log({"show"}); }

    // The command fails with this message and changes nothing.
    void expect_refused(std::initializer_list<std::string> arguments, const std::string& message) {
        const std::string before = record_bytes();
        const Outcome outcome = kestrel_log(arguments);
        EXPECT_EQ(outcome.status, 2) << message;
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.error, HasSubstr(message));
        EXPECT_EQ(record_bytes(), before);
    }
};

TEST_F(KestrelLog, ShowsOwnAndWorkingLevelsOfAllClasses) {
    kestrel_log({"level", "KS", "VERBOSE"});
    const Outcome outcome = kestrel_log({"show"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(outcome.output, ContainsRegex("\nKSEXT +INHERIT +VERBOSE +Kestrel Extensions\n"));
    EXPECT_THAT(outcome.output, ContainsRegex("ALL +ERROR +ERROR +All\n"));
    EXPECT_THAT(outcome.output, ContainsRegex("\nflags +0x0000062f\n"));
    EXPECT_THAT(outcome.output, HasSubstr(home() + "//.QUOClient/logs/QUOClient.log\n"));
    std::istringstream lines(outcome.output);
    int rows = 0;
    for (std::string line; std::getline(lines, line) && !line.empty();) ++rows;
    EXPECT_EQ(rows, 61);
}

TEST_F(KestrelLog, ShowsSettingsAsJson) {
    kestrel_log({"level", "KS", "VERBOSE"});
    kestrel_log({"level", "ALL", "INHERIT"});
    const auto settings = nlohmann::json::parse(kestrel_log({"show", "--json"}).output);
    EXPECT_EQ(settings["flags"], 0x62f);
    EXPECT_EQ(settings["output"], home() + "//.QUOClient/logs/QUOClient.log");
    EXPECT_EQ(settings["rollover_size"], 200);
    EXPECT_EQ(settings["rollover_count"], 2);
    EXPECT_EQ(settings["session_max"], 200);
    ASSERT_EQ(settings["classes"].size(), 60U);
    EXPECT_EQ(settings["classes"][29], (nlohmann::json{{"index", 29},
                                                       {"name", "KSEXT"},
                                                       {"display_name", "Kestrel Extensions"},
                                                       {"parent", "KS"},
                                                       {"level", "INHERIT"},
                                                       {"working_level", "VERBOSE"}}));
    EXPECT_TRUE(settings["classes"][0]["parent"].is_null());
    EXPECT_TRUE(settings["classes"][0]["working_level"].is_null());
}

TEST_F(KestrelLog, ShowsInvalidValuesOfOtherPrograms) {
    std::string bytes(516, '\xff');
    kestrel::testing::put_u32(bytes, 4, 77);
    kestrel::testing::put_u32(bytes, 512, 0x12345678);
    kestrel::testing::write_file(home() + "/.QUOClient/.zynlogconf", bytes);
    const Outcome table = kestrel_log({"show"});
    EXPECT_EQ(table.status, 0);
    EXPECT_THAT(table.output, HasSubstr("ALL       77"));
    EXPECT_THAT(table.output, HasSubstr("\\xff\\xff"));
    const auto settings = nlohmann::json::parse(kestrel_log({"show", "--json"}).output);
    EXPECT_EQ(settings["classes"][0]["level"], "77");
}

TEST_F(KestrelLog, SetsLevelByName) {
    expect_silent_success(kestrel_log({"level", "WEBKIT", "VERBOSE"}));
    EXPECT_EQ(u32_at(record_bytes(), 4 + 4 * 41), 1U);
    expect_silent_success(kestrel_log({"level", "webkit", "None"}));
    EXPECT_EQ(u32_at(record_bytes(), 4 + 4 * 41), 7U);
}

TEST_F(KestrelLog, RejectsUnknownNames) {
    expect_refused({"level", "WEBKITS", "VERBOSE"}, "unknown class 'WEBKITS'; valid are: ALL ");
    expect_refused({"level", "WEBKIT", "LOUD"},
                   "unknown level 'LOUD'; valid are: INHERIT VERBOSE INFO WARNING ERROR FATAL "
                   "AOL NONE\n");
    expect_refused({"level", "WEBKIT"}, "LEVEL is required");
    expect_refused({"louder"},
                   "valid are: show level flags output rollover session reset follow\n");
    expect_refused({}, "a command is required");
    expect_refused({"show", "--yaml"}, "--yaml");
}

TEST(KestrelLogWithoutSettings, RejectsWithoutCreatingAFile) {
    EXPECT_EQ(kestrel_log({"level", "NOPE", "VERBOSE"}).status, 2);
    EXPECT_EQ(kestrel_log({"flags", "--enable", "loud"}).status, 2);
    EXPECT_EQ(kestrel_log({"output", "relative"}).status, 2);
    EXPECT_EQ(kestrel_log({"follow", "--level", "LOUD"}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(home() + "/.QUOClient"));
}

TEST_F(KestrelLog, RejectsWithoutRepairingADamagedFile) {
    const std::string garbage(2'000, 'x');
    std::ofstream(home() + "/.QUOClient/.zynlogconf") << garbage;
    expect_refused({"level", "NOPE", "VERBOSE"}, "unknown class 'NOPE'");
    EXPECT_EQ(record_bytes(), garbage);
}

TEST_F(KestrelLog, SetsAndClearsFlags) {
    expect_silent_success(kestrel_log({"flags", "--enable", "thread-name", "--disable", "0xf"}));
    EXPECT_EQ(u32_at(record_bytes(), 0), 0x1620U);
    expect_silent_success(kestrel_log({"flags", "--disable", "thread-name"}));
    EXPECT_EQ(u32_at(record_bytes(), 0), 0x620U);
    expect_silent_success(kestrel_log({"flags", "--enable", "4294967295"}));
    EXPECT_EQ(u32_at(record_bytes(), 0), 0xffff'ffffU);
}

TEST_F(KestrelLog, RejectsInvalidFlags) {
    for (const char* text : {"0x100000000", "-1", "loud", "0x", "1x"}) {
        expect_refused({"flags", std::string("--enable=") + text},
                       "valid are: 0 to 0xffffffff, thread-name");
    }
    expect_refused({"flags", "--enable=1", "--disable=loud"}, "'loud' is not a valid set of flags");
    expect_refused({"flags"}, "--enable");
}

TEST_F(KestrelLog, SetsOutputPath) {
    const std::string longest = "/" + std::string(254, 'p');
    expect_silent_success(kestrel_log({"output", longest}));
    EXPECT_EQ(record_bytes().substr(244, 256), longest + std::string(1, '\0'));
}

TEST_F(KestrelLog, EscapesBidiCharactersOfTheOutputPath) {
    kestrel_log({"output", "/a\u202eb"});
    EXPECT_THAT(kestrel_log({"show"}).output, HasSubstr("/a\\u{202e}b\n"));
    const std::string json = kestrel_log({"show", "--json"}).output;
    EXPECT_THAT(json, HasSubstr("\"/a\\u202eb\""));
    EXPECT_EQ(nlohmann::json::parse(json)["output"], "/a\u202eb");
}

TEST_F(KestrelLog, RejectsInvalidOutputPaths) {
    expect_refused({"output", "/" + std::string(255, 'p')}, "256 bytes long; valid are 1 to 255");
    expect_refused({"output", "relative"}, "must begin with '/'");
    expect_refused({"output", ""}, "must begin with '/'");
}

TEST_F(KestrelLog, SetsRollover) {
    expect_silent_success(kestrel_log({"rollover", "--size", "2000", "--count", "0"}));
    EXPECT_EQ(u32_at(record_bytes(), 500), 2000U);
    EXPECT_EQ(u32_at(record_bytes(), 504), 0U);
    expect_silent_success(kestrel_log({"rollover", "--count", "100"}));
    EXPECT_EQ(u32_at(record_bytes(), 500), 2000U);
    EXPECT_EQ(u32_at(record_bytes(), 504), 100U);
}

TEST_F(KestrelLog, RejectsRolloversOutOfRange) {
    expect_refused({"rollover", "--size", "0"}, "not in range 1 to 2000");
    expect_refused({"rollover", "--size", "2001"}, "not in range 1 to 2000");
    expect_refused({"rollover", "--size", "7", "--count", "101"}, "not in range 0 to 100");
    expect_refused({"rollover", "--count=-1"}, "--count");
    expect_refused({"rollover"}, "--size");
}

TEST_F(KestrelLog, SetsSessionMaximum) {
    expect_silent_success(kestrel_log({"session", "0"}));
    EXPECT_EQ(u32_at(record_bytes(), 508), 0U);
    expect_silent_success(kestrel_log({"session", "2000"}));
    EXPECT_EQ(u32_at(record_bytes(), 508), 2000U);
    expect_refused({"session", "2001"}, "not in range 0 to 2000");
}

TEST_F(KestrelLog, ResetsAllSettings) {
    const std::string defaults = record_bytes();
    kestrel_log({"level", "ALL", "NONE"});
    kestrel_log({"level", "CLASS59", "INFO"});
    kestrel_log({"flags", "--enable", "0xfffff000", "--disable", "0x1"});
    kestrel_log({"output", "/x"});
    kestrel_log({"rollover", "--size", "1", "--count", "1"});
    kestrel_log({"session", "1"});
    EXPECT_NE(record_bytes(), defaults);
    expect_silent_success(kestrel_log({"reset"}));
    EXPECT_EQ(record_bytes(), defaults);
}

TEST_F(KestrelLog, PrintsHelpAndVersion) {
    EXPECT_EQ(kestrel_log({"--version"}).output, "kestrel-log " KESTREL_VERSION "\n");
    const Outcome help = kestrel_log({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("follow"));
    EXPECT_THAT(kestrel_log({"level", "--help"}).output, HasSubstr("CLASS"));
}

TEST_F(KestrelLog, ReportsMissingSettings) {
    kestrel::testing::write_file(home() + "/file", "");
    setenv("HOME", (home() + "/file").c_str(), 1);
    const Outcome outcome = kestrel_log({"show"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("cannot open the settings"));
}

TEST(KestrelLogOnAFullDisk, ReportsFailedChanges) {
    if (!kestrel::testing::has_private_machine() ||
        mount("none", home().c_str(), "tmpfs", 0, "size=64k") == -1) {
        GTEST_SKIP() << "requires a private mount namespace";
    }
    std::filesystem::create_directories(home() + "/.QUOClient/logs");
    kestrel::testing::write_file(home() + "/ballast", std::string(1'000'000, 'x'));
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"level", "WEBKIT", "VERBOSE"},
          {"flags", "--enable", "1"},
          {"flags", "--disable", "1"},
          {"output", "/x"},
          {"rollover", "--size", "1"},
          {"rollover", "--count", "1"},
          {"session", "1"},
          {"reset"}}) {
        const Outcome outcome = kestrel_log(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments.front();
        EXPECT_EQ(outcome.error, "kestrel-log: cannot change the settings at " + home() +
                                     "//.QUOClient/.zynlogconf: the file was cut short, or its "
                                     "disk is full\n");
    }
    EXPECT_EQ(kestrel_log({"show"}).status, 0);
    umount2(home().c_str(), MNT_DETACH);  // or the directory could not be removed
}

TEST_F(KestrelLog, StopsQuietlyWhenOutputIsClosed) {
    const Outcome outcome = kestrel::testing::run(
        {"bash", "-c", "\"$0\" show | true; echo ${PIPESTATUS[0]}", KESTREL_LOG_PROGRAM});
    EXPECT_EQ(outcome.output, "0\n");
    EXPECT_EQ(outcome.error, "");
}

TEST_F(KestrelLog, ReportsWriteErrors) {
    const Outcome outcome =
        kestrel::testing::run({"bash", "-c", "\"$0\" show >/dev/full", KESTREL_LOG_PROGRAM});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("No space left on device"));
}

// The completions that bash offers for word number `word`.
std::string completions(const std::string& words, int word) {
    return kestrel::testing::run({"bash", "-c",
                                  "PATH=\"" KESTREL_LOG_DIRECTORY
                                  "\":$PATH; source \"" KESTREL_LOG_COMPLETION "\"; COMP_WORDS=(" +
                                      words + "); COMP_CWORD=" + std::to_string(word) +
                                      "; _kestrel_log; echo \"${COMPREPLY[@]}\""})
        .output;
}

TEST_F(KestrelLog, IsCompletedByBash) {
    EXPECT_EQ(completions("kestrel-log re", 1), "reset\n");
    EXPECT_EQ(completions("kestrel-log level WEB", 2), "WEBKIT\n");
    EXPECT_EQ(completions("kestrel-log level k", 2), "KS KSEXT\n");
    EXPECT_EQ(completions("kestrel-log level KS ''", 3),
              "INHERIT VERBOSE INFO WARNING ERROR FATAL AOL NONE\n");
    EXPECT_EQ(completions("kestrel-log follow --level f", 3), "FATAL\n");
    EXPECT_EQ(completions("kestrel-log flags --enable ''", 3), "thread-name\n");
    EXPECT_EQ(completions("kestrel-log rollover --", 2), "--size --count --help\n");
}

}  // namespace
