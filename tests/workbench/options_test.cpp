#include "workbench/options.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "ipc/protocol.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

class CommandLine : public ::testing::Test {
  protected:
    CommandLine() {
        write("page.html", "<!doctype html>");
        write("resources", "{}");
        write("libkestrel-extension.so", "");
    }

    std::string path(const std::string& name) const { return directory.path() + "/" + name; }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
    }

    static Options parse_only(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "kestrel-workbench");
        std::vector<char*> argv;
        argv.reserve(arguments.size() + 1);
        for (std::string& argument : arguments) argv.push_back(argument.data());
        argv.push_back(nullptr);
        return parse_options(static_cast<int>(arguments.size()), argv.data());
    }

    // With a page and an extension.
    Options parse(std::vector<std::string> arguments = {}) const {
        arguments.insert(arguments.end(),
                         {"--page", path("page.html"), "--extension-dir", directory.path()});
        return parse_only(std::move(arguments));
    }

    // The error text; "accepted" if there is no error.
    static std::string refusal(const std::function<void()>& parsing) {
        try {
            parsing();
        } catch (const UsageError& error) {
            return error.what();
        }
        return "accepted";
    }
    std::string refusal(std::vector<std::string> arguments) const {
        return refusal([&] { parse(std::move(arguments)); });
    }

    TemporaryDirectory directory;
};

TEST_F(CommandLine, HasDefaults) {
    const Options options = parse();
    EXPECT_EQ(options.page_uri, "file://" + path("page.html"));
    EXPECT_EQ(options.extension_directory, directory.path());
    EXPECT_EQ(options.resources, "");
    EXPECT_EQ(options.install_root, "");
    EXPECT_EQ(options.home, "");
    EXPECT_EQ(options.transcript, "");
    EXPECT_EQ(options.screenshot, "");
    EXPECT_EQ(options.script, "");
    EXPECT_EQ(options.locale, "");
    EXPECT_THAT(options.data, EndsWith("/kestrel-workbench"));
    EXPECT_TRUE(options.has_sandbox);
    EXPECT_FALSE(options.is_headless);
    EXPECT_FALSE(options.call_everything);
    EXPECT_FALSE(options.agrees);
    EXPECT_EQ(options.timeout.count(), 60);
    EXPECT_FALSE(options.show_version);
}

TEST_F(CommandLine, ReadsEachOption) {
    const Options options =
        parse({"--resources",    path("resources"), "--install-root",    directory.path(), "--home",
               directory.path(), "--data",          directory.path(),    "--locale",       "de",
               "--no-sandbox",   "--transcript",    path("lines"),       "--headless",     "--auto",
               "--yes",          "--screenshot",    path("picture.png"), "--timeout",      "3600"});
    EXPECT_EQ(options.resources, "{}");
    EXPECT_EQ(options.install_root, directory.path());
    EXPECT_EQ(options.home, directory.path());
    EXPECT_EQ(options.data, directory.path());
    EXPECT_EQ(options.locale, "de");
    EXPECT_FALSE(options.has_sandbox);
    EXPECT_EQ(options.transcript, path("lines"));
    EXPECT_TRUE(options.is_headless);
    EXPECT_TRUE(options.call_everything);
    EXPECT_TRUE(options.agrees);
    EXPECT_EQ(options.screenshot, path("picture.png"));
    EXPECT_EQ(options.timeout.count(), 3600);
}

TEST_F(CommandLine, AcceptsAUrlAsPage) {
    const Options options =
        parse_only({"--page", "https://store.example/?a=b", "--extension-dir", directory.path()});
    EXPECT_EQ(options.page_uri, "https://store.example/?a=b");
}

TEST_F(CommandLine, AcceptsVersionAlone) { EXPECT_TRUE(parse_only({"--version"}).show_version); }

TEST_F(CommandLine, MakesPathsAbsolute) {
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(directory.path());
    const Options options =
        parse_only({"--page", "page.html", "--extension-dir", ".", "--transcript", "lines"});
    std::filesystem::current_path(previous);
    EXPECT_EQ(options.page_uri, "file://" + path("page.html"));
    EXPECT_EQ(options.extension_directory, directory.path());
    EXPECT_EQ(options.transcript, path("lines"));
}

TEST_F(CommandLine, RequiresAPage) {
    EXPECT_EQ(refusal([] { parse_only({}); }), "--page is required");
}

TEST_F(CommandLine, RejectsInvalidPages) {
    const auto with_page = [](const std::string& page) {
        return refusal([&] { parse_only({"--page", page}); });
    };
    EXPECT_EQ(with_page("/missing.html"), "--page: no such file: /missing.html");
    EXPECT_THAT(with_page(directory.path()), HasSubstr("--page: no such file"));
    EXPECT_EQ(with_page("http://[bad"), "--page: not a valid URL: http://[bad");
}

TEST_F(CommandLine, RejectsUnknownArguments) {
    EXPECT_EQ(refusal({"more"}), "unexpected argument: more");
    EXPECT_EQ(refusal({"--nonsense"}), "unexpected argument: --nonsense");
    EXPECT_EQ(refusal([] { parse_only({"--page"}); }), "--page needs a value");
    EXPECT_EQ(refusal([] {
                  parse_only({"--home", "/", "--home", "/", "--home"});
              }),
              "--home needs a value");
    EXPECT_EQ(refusal({"--headless=maybe"}), "the value of --headless is not valid");
}

TEST_F(CommandLine, UsesTheLastValueOfARepeatedOption) {
    const Options options =
        parse({"--headless", "-l", "fr", "--timeout=1", "-lde", "--timeout", "2", "--headless"});
    EXPECT_EQ(options.locale, "de");
    EXPECT_EQ(options.timeout.count(), 2);
}

TEST_F(CommandLine, RejectsMissingDirectories) {
    EXPECT_EQ(refusal({"--home", "/missing"}), "--home: no such directory: /missing");
    EXPECT_EQ(refusal({"--install-root", path("page.html")}),
              "--install-root: no such directory: " + path("page.html"));
    EXPECT_EQ(refusal([&] {
                  parse_only({"--page", path("page.html"), "--extension-dir", "/missing"});
              }),
              "--extension-dir: no such directory: /missing");
}

TEST_F(CommandLine, RequiresAnExtension) {
    std::filesystem::remove(path("libkestrel-extension.so"));
    EXPECT_EQ(refusal(std::vector<std::string>{}),
              "--extension-dir: there is no libkestrel-extension.so in " + directory.path());
}

TEST_F(CommandLine, RejectsUnwritableFiles) {
    EXPECT_EQ(refusal({"--transcript", "/missing/lines"}),
              "--transcript: cannot write /missing/lines");
    EXPECT_EQ(refusal({"--headless", "--screenshot", directory.path()}),
              "--screenshot: cannot write " + directory.path());
}

TEST_F(CommandLine, UsesATemporaryDataDirectoryWhenHeadless) {
    EXPECT_EQ(parse({"--headless"}).data, "");
}

TEST_F(CommandLine, RejectsHeadlessOptionsWithoutHeadless) {
    write("script", "");
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--script", path("script")},
                                               {"--auto"},
                                               {"--yes"},
                                               {"--screenshot", path("picture.png")},
                                               {"--timeout", "1"}}) {
        EXPECT_EQ(refusal(arguments), arguments.front() + " requires --headless");
    }
}

TEST_F(CommandLine, RejectsScriptTogetherWithAuto) {
    write("script", "");
    EXPECT_EQ(refusal({"--headless", "--auto", "--script", path("script")}),
              "--script and --auto exclude each other");
}

TEST_F(CommandLine, ReadsTheScript) {
    write("script", "workbench.expect(await 1, 'one');");
    EXPECT_EQ(parse({"--headless", "--script", path("script")}).script,
              "workbench.expect(await 1, 'one');");
}

TEST_F(CommandLine, RejectsUnusableScripts) {
    EXPECT_EQ(refusal({"--headless", "--script", "/missing"}), "--script: cannot read /missing");
    write("script", "/*" + std::string(kMaxInboundPayload, 'x') + "*/");
    EXPECT_EQ(refusal({"--headless", "--script", path("script")}),
              "--script: too long for the extension");
}

TEST_F(CommandLine, RejectsTimeoutsOutOfRange) {
    for (const char* seconds : {"0", "-1", "3601", "soon"}) {
        EXPECT_EQ(refusal({"--headless", "--timeout", seconds}),
                  std::string("--timeout: '") + seconds + "' is not in range 1 to 3600")
            << seconds;
    }
    EXPECT_EQ(parse({"--headless", "--timeout", "1"}).timeout.count(), 1);
}

TEST_F(CommandLine, RejectsInvalidResources) {
    EXPECT_EQ(refusal({"--resources", "/missing"}), "--resources: cannot read /missing");
    write("resources", "\xff");
    EXPECT_EQ(refusal({"--resources", path("resources")}),
              "--resources: not UTF-8 text: " + path("resources"));
    write("resources", std::string("{\0}", 3));
    EXPECT_EQ(refusal({"--resources", path("resources")}),
              "--resources: not UTF-8 text: " + path("resources"));
}

TEST_F(CommandLine, AcceptsResourcesUpToTheMessageLimit) {
    const std::size_t longest = kMaxInboundPayload - ("file://" + path("page.html")).size() - 2;
    write("resources", std::string(longest, ' '));
    EXPECT_EQ(parse({"--resources", path("resources")}).resources.size(), longest);
    write("resources", std::string(longest + 1, ' '));
    EXPECT_EQ(refusal({"--resources", path("resources")}),
              "the page's address and resources together are too long for the extension");
}

TEST_F(CommandLine, AcceptsHomesWhoseSocketPathFits) {
    const auto home_of = [&](std::size_t socket_path_size) {
        const std::size_t fixed = std::string("/.QUOClient/webkit_socket2").size();
        std::string home = directory.path() + "/";
        home += std::string(socket_path_size - fixed - home.size(), 'h');
        std::filesystem::create_directory(home);
        return home;
    };
    EXPECT_EQ(refusal({"--home", home_of(107)}), "accepted");
    EXPECT_THAT(refusal({"--home", home_of(108)}),
                HasSubstr("--home: the path is too long for a socket"));
}

}  // namespace
}  // namespace kestrel::testing
