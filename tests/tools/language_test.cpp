// The error texts and the help of kestrel-log in each language.

#include "program/language.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/log/machine.h"
#include "tests/tools/program.h"

namespace {

using kestrel::testing::kestrel_log;
using kestrel::testing::Outcome;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

void set_language(const std::string& language) {
    kestrel::use_language(language, kestrel::testing::home());
}

struct ErrorCase {
    const char* name;
    std::vector<std::string> arguments;
    std::map<std::string, std::string> texts;

    friend std::ostream& operator<<(std::ostream& stream, const ErrorCase& error) {
        return stream << error.name;
    }
};

const std::string kCommands = " show level flags output rollover session reset follow";

const ErrorCase kErrors[] = {
    {"NoCommand",
     {},
     {{"en", "a command is required; valid are:" + kCommands},
      {"de", "ein Befehl fehlt; gültig sind:" + kCommands},
      {"fr", "il faut une commande ; commandes valides :" + kCommands}}},
    {"NoArgument",
     {"level", "WEBKIT"},
     {{"en", "LEVEL is required"}, {"de", "LEVEL fehlt"}, {"fr", "LEVEL manque"}}},
    {"NoOption",
     {"flags"},
     {{"en", "an option is required; valid are: --enable --disable"},
      {"de", "eine Option fehlt; gültig sind: --enable --disable"},
      {"fr", "il faut une option ; options valides : --enable --disable"}}},
    {"UnexpectedArguments",
     {"level", "WEBKIT", "INFO", "more", "and more"},
     {{"en", "unexpected argument: more"},
      {"de", "unerwartetes Argument: more"},
      {"fr", "argument inattendu : more"}}},
    {"UnknownOption",
     {"session", "1", "--size", "1"},
     {{"en", "unexpected argument: --size"},
      {"de", "unerwartetes Argument: --size"},
      {"fr", "argument inattendu : --size"}}},
    {"OptionWithoutValue",
     {"follow", "--level"},
     {{"en", "--level needs a value"},
      {"de", "--level braucht einen Wert"},
      {"fr", "--level demande une valeur"}}},
    {"OptionGivenTwice",
     {"follow", "--level", "INFO", "--level", "ERROR"},
     {{"en", "--level may be given only once"},
      {"de", "--level darf nur einmal vorkommen"},
      {"fr", "--level ne peut être donné qu'une fois"}}},
    {"FlagWithAValue",
     {"show", "--json=--level"},
     {{"en", "the value of --json is not valid"},
      {"de", "der Wert von --json ist nicht gültig"},
      {"fr", "la valeur de --json n'est pas valable"}}},
    {"NumberOutOfRange",
     {"session", "2001"},
     {{"en", "MAXIMUM: '2001' is not in range 0 to 2000"},
      {"de", "MAXIMUM: „2001“ liegt nicht im Bereich von 0 bis 2000"},
      {"fr", "MAXIMUM: « 2001 » n'est pas compris entre 0 et 2000"}}},
    {"NotANumber",
     {"rollover", "--size", "7x"},
     {{"en", "--size: '7x' is not in range 1 to 2000"},
      {"de", "--size: „7x“ liegt nicht im Bereich von 1 bis 2000"},
      {"fr", "--size: « 7x » n'est pas compris entre 1 et 2000"}}},
};

class KestrelLogError : public testing::TestWithParam<ErrorCase> {};

TEST_P(KestrelLogError, IsTranslated) {
    const std::map<std::string, std::string> advice = {
        {"en", "Run with --help for more information."},
        {"de", "Mehr erfährt man mit --help."},
        {"fr", "Pour plus d'informations : --help."},
    };
    for (const auto& [language, text] : GetParam().texts) {
        set_language(language);
        const Outcome outcome = kestrel_log(GetParam().arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.error, "kestrel-log: " + text + "\n" + advice.at(language) + "\n");
    }
    EXPECT_FALSE(std::filesystem::exists(kestrel::testing::home() + "/.QUOClient"));
}

INSTANTIATE_TEST_SUITE_P(Every, KestrelLogError, testing::ValuesIn(kErrors),
                         [](const auto& test) { return test.param.name; });

TEST(KestrelLogHelp, IsTranslated) {
    set_language("de");
    // Versions of CLI11 differ in blanks and empty lines.
    EXPECT_THAT(kestrel_log({"--help"}).output,
                AllOf(HasSubstr("\nAufruf: kestrel-log [OPTIONEN] BEFEHL\n"),
                      HasSubstr("\nOptionen:\n"), HasSubstr("\nBefehle:\n")));
    EXPECT_THAT(kestrel_log({"level", "--help"}).output,
                AllOf(HasSubstr("\nArgumente:\n  CLASS TEXT NÖTIG "),
                      ContainsRegex("\nOptionen:\n  -h, *--help   "), Not(HasSubstr("Options"))));
    EXPECT_THAT(kestrel_log({"rollover", "--help"}).output,
                AllOf(ContainsRegex("\nMindestens eine der Optionen ist nötig. ?\n+Aufruf: "),
                      ContainsRegex("\n +--size 1-2000 "), ContainsRegex("\n +--count 0-100 ")));
}

}  // namespace
