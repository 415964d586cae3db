// The built program, with a real window and a real web process. Needs a display.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/workbench_process.h"

namespace kestrel::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

// Process names are truncated to 15 bytes.
constexpr const char* kWebProcess = "WebKitWebProces";

// The first descendant of `ancestor` with this name, or -1.
pid_t descendant_called(const std::string& name, pid_t ancestor) {
    const std::string tasks = "/proc/" + std::to_string(ancestor) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks)) {
        std::istringstream children(file_content(task.path() / "children"));
        for (pid_t child = 0; children >> child;) {
            if (file_content("/proc/" + std::to_string(child) + "/comm") == name + "\n")
                return child;
            const pid_t found = descendant_called(name, child);
            if (found != -1) return found;
        }
    }
    return -1;
}

std::string namespace_of(pid_t process) {
    return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/ns/mnt");
}

class ProgramTest : public ::testing::Test {
  protected:
    ~ProgramTest() override {
        if (!display.empty()) setenv("DISPLAY", display.c_str(), 1);
        unsetenv("GDK_BACKEND");
    }

    void start(std::vector<std::string> arguments) {
        program =
            std::make_unique<WorkbenchProcess>(std::move(arguments), temporary.path(), data.path());
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
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(file(name), std::ios::binary) << text;
    }
    bool has_cleaned_up() const { return std::filesystem::is_empty(temporary.path()); }

    const std::string display = variable("DISPLAY");
    TemporaryDirectory temporary;
    TemporaryDirectory data;
    TemporaryDirectory files;
    std::unique_ptr<WorkbenchProcess> program;
};

TEST_F(ProgramTest, RejectsAnInvalidCommandLineWithStatusTwo) {
    EXPECT_EQ(run({}), 2);
    EXPECT_EQ(program->output(),
              "kestrel-workbench: --page is required\n"
              "Run with --help for more information.\n");
    EXPECT_EQ(run({"--page", "/missing"}), 2);
    EXPECT_THAT(program->output(),
                StartsWith("kestrel-workbench: --page: no such file: /missing\n"));
    EXPECT_EQ(run({"--nonsense"}), 2);
    std::filesystem::create_symlink("/missing/lines", file("lines"));
    EXPECT_EQ(run({"--page", page("silent.html"), "--transcript", file("lines")}), 2);
    EXPECT_THAT(program->output(),
                StartsWith("kestrel-workbench: --transcript: cannot write " + file("lines")));
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, PrintsVersionAndHelp) {
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_EQ(program->output(), "kestrel-workbench " WORKBENCH_VERSION "\n");
    EXPECT_EQ(run({"--help"}), 0);
    for (const char* option :
         {"--page", "--resources", "--extension-dir", "--install-root", "--home", "--data",
          "--locale", "--no-sandbox", "--transcript", "--headless", "--script", "--auto", "--yes",
          "--screenshot", "--timeout"}) {
        EXPECT_THAT(program->output(), HasSubstr(option));
    }
}

TEST_F(ProgramTest, ReportsAMissingDisplay) {
    setenv("GDK_BACKEND", "x11", 1);
    setenv("DISPLAY", ":99999", 1);
    EXPECT_EQ(run({"--page", page("silent.html")}), 1);
    EXPECT_EQ(program->output(), "kestrel-workbench: there is no display\n");
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, SavesAScreenshotAndATranscriptFile) {
    EXPECT_EQ(run({"--page", store("index.html"), "--resources", store("resources.json"),
                   "--headless", "--auto", "--screenshot", file("store.png"), "--transcript",
                   file("lines"), "--no-sandbox"}),
              0);
    EXPECT_THAT(file_content(file("store.png")), StartsWith("\x89PNG\r\n"));
    EXPECT_THAT(file_content(file("lines")),
                HasSubstr("\"direction\":\"to-host\",\"type\":28,\"name\":\"ready\","));
    EXPECT_THAT(file_content(file("lines")), HasSubstr("every callback ran\"}\n"));
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, FailsWhenThePageOmitsAFunction) {
    EXPECT_EQ(run({"--page", page("incomplete.html"), "--headless", "--auto"}), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- FAILED: refresh reached the host 0 of 2 times\n"));
    EXPECT_THAT(program->output(), HasSubstr("-- FAILED: getItem was not called back\n"));
    EXPECT_THAT(program->output(), Not(HasSubstr("FAILED: getItem reached")));
}

TEST_F(ProgramTest, FailsWhenThePageIsNeverReady) {
    EXPECT_EQ(run({"--page", page("silent.html"), "--headless", "--auto", "--timeout", "2"}), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- FAILED: the page never said that it is ready\n"));
}

TEST_F(ProgramTest, FailsWhenThePageCannotBeLoaded) {
    EXPECT_EQ(run({"--page", "file:///missing/page.html", "--headless", "--auto"}), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- file:///missing/page.html: "));
}

TEST_F(ProgramTest, FailsWhenTheWebProcessDies) {
    start({"--page", page("silent.html"), "--headless", "--auto", "--screenshot",
           file("picture.png")});
    ASSERT_NE(program->wait_for_line("onHostReady"), "");
    const pid_t web_process = descendant_called(kWebProcess, program->pid());
    ASSERT_NE(web_process, -1);
    ASSERT_EQ(kill(web_process, SIGKILL), 0);
    EXPECT_EQ(program->wait_for_end(), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- the web process has gone\n"));
    EXPECT_THAT(program->output(), HasSubstr("-- could not save " + file("picture.png") + "\n"));
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, SucceedsWhenTheScriptsExpectationsHold) {
    write("script.js",
          "external.setItem('key', 'value', '');"
          "window.take = (value) => { window.got = value; };"
          "external.getItem('key', 'take');"
          "await workbench.until(() => window.got === 'value', 'the host keeps items');");
    EXPECT_EQ(run({"--headless", "--page", page("silent.html"), "--script", file("script.js")}), 0);
    EXPECT_THAT(program->output(), HasSubstr("-- all expectations held: 1\n"));
    EXPECT_TRUE(has_cleaned_up());
    EXPECT_TRUE(std::filesystem::is_empty(data.path()));
}

TEST_F(ProgramTest, RejectsAScriptWithASyntaxError) {
    write("script.js", "1;\n2;\nreturn );");
    EXPECT_EQ(run({"--headless", "--page", page("silent.html"), "--script", file("script.js")}), 2);
    EXPECT_THAT(program->output(), HasSubstr("kestrel-workbench: --script: line 3: "));
    EXPECT_TRUE(has_cleaned_up());
}

TEST_F(ProgramTest, FailsWhenAnExpectationDoesNotHold) {
    write("script.js", "await workbench.until(() => document.title === 'x', 'a title', 1);");
    EXPECT_EQ(run({"--headless", "--page", page("silent.html"), "--script", file("script.js")}), 1);
    EXPECT_THAT(program->output(), HasSubstr("-- FAILED: a title\n"));
}

TEST_F(ProgramTest, FailsWhenTheScriptDoesNotEnd) {
    write("script.js", "await new Promise(() => {});");
    EXPECT_EQ(run({"--headless", "--page", page("silent.html"), "--script", file("script.js"),
                   "--timeout", "5"}),
              1);
    EXPECT_THAT(program->output(), HasSubstr("-- FAILED: the script has not come to its end\n"));
}

TEST_F(ProgramTest, SucceedsWithoutExpectations) {
    EXPECT_EQ(run({"--headless", "--page", page("silent.html"), "--screenshot", file("p.png")}), 0);
    EXPECT_THAT(file_content(file("p.png")), StartsWith("\x89PNG\r\n"));
}

TEST_F(ProgramTest, KeepsDataInTheGivenDirectory) {
    write("set.js", "external.setItem('key', 'value', '');");
    write("get.js",
          "window.take = (value) => { window.got = value; };"
          "external.getItem('key', 'take');"
          "await workbench.until(() => window.got === 'value', 'the item is still there');");
    for (const char* script : {"set.js", "get.js"}) {
        EXPECT_EQ(run({"--headless", "--page", page("silent.html"), "--data", files.path(),
                       "--script", file(script)}),
                  0);
    }
}

TEST_F(ProgramTest, RunsWebProcessesInASandbox) {
    start({"--page", page("silent.html")});
    ASSERT_NE(program->wait_for_line("onHostReady"), "");
    if (program->output().find("no sandbox") != std::string::npos) {
        GTEST_SKIP() << "this machine lets nobody make one";
    }
    const pid_t web_process = descendant_called(kWebProcess, program->pid());
    ASSERT_NE(web_process, -1);
    EXPECT_NE(namespace_of(web_process), namespace_of(getpid()));

    start({"--page", page("silent.html"), "--no-sandbox"});
    ASSERT_NE(program->wait_for_line("onHostReady"), "");
    EXPECT_EQ(namespace_of(descendant_called(kWebProcess, program->pid())), namespace_of(getpid()));
}

TEST_F(ProgramTest, CleansUpAndCompletesTheTranscriptOnSignals) {
    for (const int signal : {SIGHUP, SIGTERM}) {
        start({"--page", page("silent.html"), "--transcript", file("transcript")});
        ASSERT_NE(program->wait_for_line("onHostReady"), "");
        program->send_signal(signal);
        EXPECT_EQ(program->wait_for_end(), 128 + signal);
        EXPECT_THAT(file_content(file("transcript")),
                    AllOf(HasSubstr("onHostReady"), ::testing::EndsWith("}\n")));
        EXPECT_TRUE(has_cleaned_up());
    }
}

TEST_F(ProgramTest, UsesTheGivenHome) {
    start({"--page", page("silent.html"), "--home", files.path()});
    ASSERT_NE(program->wait_for_line("onHostReady"), "");
    EXPECT_TRUE(std::filesystem::is_socket(file(".QUOClient/webkit_socket2")));

    WorkbenchProcess second({"--page", page("silent.html"), "--home", files.path()},
                            temporary.path(), data.path());
    EXPECT_EQ(second.wait_for_end(), 1);
    EXPECT_THAT(second.output(), HasSubstr("kestrel-workbench: another host is listening on "));

    program->send_signal(SIGINT);
    EXPECT_EQ(program->wait_for_end(), 128 + SIGINT);
    EXPECT_FALSE(std::filesystem::exists(file(".QUOClient/webkit_socket2")));
    EXPECT_TRUE(std::filesystem::exists(file(".QUOClient")));
}

}  // namespace
}  // namespace kestrel::testing
