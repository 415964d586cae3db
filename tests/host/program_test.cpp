// The built program, with a real window and a real web process. Needs a display: run through
// scripts/with-display.
#include "tests/host/program.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class ProgramTest : public ::testing::Test {
  protected:
    ~ProgramTest() override {
        if (!display.empty()) setenv("DISPLAY", display.c_str(), 1);
        unsetenv("GDK_BACKEND");
    }

    void start(std::vector<std::string> arguments) {
        program = std::make_unique<Program>(std::move(arguments), temporary.path());
    }
    int run(std::vector<std::string> arguments) {
        start(std::move(arguments));
        return program->wait_for_end();
    }
    static std::string variable(const char* name) {
        const char* value = std::getenv(name);
        return value == nullptr ? "" : value;
    }
    static std::string store(const std::string& name) { return STORE "/" + name; }
    static std::string page(const std::string& name) { return PAGES "/" + name; }
    std::string file(const std::string& name) const { return files.path() + "/" + name; }
    static std::string content(const std::string& path) {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    bool has_cleaned_up() const { return std::filesystem::is_empty(temporary.path()); }

    const std::string display = variable("DISPLAY");
    TemporaryDirectory temporary;
    TemporaryDirectory files;
    std::unique_ptr<Program> program;
};

TEST_F(ProgramTest, RefusesAWrongCommandLineWithAMessageAndStatusTwo) {
    EXPECT_EQ(run({}), 2);
    EXPECT_EQ(program->output(),
              "kestrel-host: which page? Give --page FILE or --page URL\n"
              "Try 'kestrel-host --help'.\n");
    EXPECT_EQ(run({"--page", "/missing"}), 2);
    EXPECT_THAT(program->output(), StartsWith("kestrel-host: --page: no such file: /missing\n"));
    EXPECT_EQ(run({"--nonsense"}), 2);
    std::filesystem::create_symlink("/missing/lines", file("lines"));
    EXPECT_EQ(run({"--page", page("silent.html"), "--transcript", file("lines")}), 2);
    EXPECT_THAT(program->output(),
                StartsWith("kestrel-host: --transcript: cannot write " + file("lines")));
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, TellsItsVersionAndItsOptions) {
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_EQ(program->output(), "kestrel-host " HOST_VERSION "\n");
    EXPECT_EQ(run({"--help"}), 0);
    for (const char* option : {"--page", "--resources", "--extension-dir", "--install-root",
                               "--home", "--transcript", "--auto", "--screenshot", "--timeout"}) {
        EXPECT_THAT(program->output(), HasSubstr(option));
    }
}

TEST_F(ProgramTest, SaysThatThereIsNoDisplay) {
    setenv("GDK_BACKEND", "x11", 1);
    setenv("DISPLAY", ":99999", 1);
    EXPECT_EQ(run({"--page", page("silent.html")}), 1);
    EXPECT_EQ(program->output(), "kestrel-host: there is no display\n");
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, SavesAPictureAndACopyOfItsTranscript) {
    EXPECT_EQ(run({"--page", store("index.html"), "--resources", store("resources.json"), "--auto",
                   "--screenshot", file("store.png"), "--transcript", file("lines")}),
              0);
    EXPECT_THAT(content(file("store.png")), StartsWith("\x89PNG\r\n"));
    EXPECT_EQ(content(file("lines")), program->output());
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, FailsWhenThePageLeavesSomethingOut) {
    EXPECT_EQ(run({"--page", page("incomplete.html"), "--auto"}), 1);
    EXPECT_THAT(program->output(),
                HasSubstr("-- MISSING: refresh reached the host 0 of 2 times\n"));
    EXPECT_THAT(program->output(), HasSubstr("-- MISSING: getItem was not called back\n"));
    EXPECT_THAT(program->output(), Not(HasSubstr("MISSING: getItem reached")));
}

TEST_F(ProgramTest, FailsWhenThePageSaysNothing) {
    EXPECT_EQ(run({"--page", page("silent.html"), "--auto", "--timeout", "2"}), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- MISSING: the page never said that it is ready\n"));
}

TEST_F(ProgramTest, FailsWhenThePageCannotBeLoaded) {
    EXPECT_EQ(run({"--page", "file:///missing/page.html", "--auto"}), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- file:///missing/page.html: "));
}

TEST_F(ProgramTest, FailsWhenTheWebProcessDies) {
    start({"--page", page("silent.html"), "--auto", "--screenshot", file("picture.png")});
    const std::string announcement = program->wait_for_line(" announce ");
    const int web_process = std::stoi(announcement.substr(announcement.rfind(' ')));
    ASSERT_NE(program->wait_for_line("onHostReady"), "");
    ASSERT_EQ(kill(web_process, SIGKILL), 0);
    EXPECT_EQ(program->wait_for_end(), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- the web process has gone\n"));
    EXPECT_THAT(program->output(), HasSubstr("-- could not save " + file("picture.png") + "\n"));
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, CleansUpWhenItIsInterrupted) {
    start({"--page", page("silent.html")});
    ASSERT_NE(program->wait_for_line("onHostReady"), "");
    program->send_signal(SIGTERM);
    EXPECT_EQ(program->wait_for_end(), 128 + SIGTERM);
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, UsesTheHomeItIsGiven) {
    start({"--page", page("silent.html"), "--home", files.path()});
    ASSERT_NE(program->wait_for_line("onHostReady"), "");
    EXPECT_TRUE(std::filesystem::is_socket(file(".QUOClient/webkit_socket2")));

    Program second({"--page", page("silent.html"), "--home", files.path()}, temporary.path());
    EXPECT_EQ(second.wait_for_end(), 1);
    EXPECT_THAT(second.output(), HasSubstr("kestrel-host: another host listens on "));

    program->send_signal(SIGINT);
    EXPECT_EQ(program->wait_for_end(), 128 + SIGINT);
    EXPECT_FALSE(std::filesystem::exists(file(".QUOClient/webkit_socket2")));
    EXPECT_TRUE(std::filesystem::exists(file(".QUOClient")));
}

}  // namespace
}  // namespace kestrel::testing
