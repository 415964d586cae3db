#include "workbench/desktop/installed_apps.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "tests/support/host_end.h"
#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::_;
using ::testing::ElementsAre;
using ::testing::FieldsAre;
using ::testing::HasSubstr;
using ::testing::Optional;

namespace fs = std::filesystem;

constexpr const char* kHome = "/home of/the user";

// A machine with these applications only. GLib reads the directories on first use.
class Machine : public ::testing::Environment {
  public:
    void SetUp() override {
        const std::string& path = directory_->path();
        setenv("XDG_DATA_HOME", (path + "/data").c_str(), 1);
        setenv("XDG_DATA_DIRS", (path + "/system").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (path + "/config").c_str(), 1);
        setenv("XDG_CURRENT_DESKTOP", "Test", 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
        setenv("HOME", "/private", 1);
        setenv("PATH", path.c_str(), 1);

        ASSERT_EQ(mkfifo((path + "/home").c_str(), 0600), 0);
        // Kept open, so that launched programs do not block on opening it.
        pipe_.emplace(::open((path + "/home").c_str(), O_RDWR | O_CLOEXEC));
        write("tell-home", "#!/bin/sh\nprintf '%s' \"$HOME\" >" + path + "/home\n");
        fs::permissions(path + "/tell-home", fs::perms::owner_all);

        const std::string exec = "Exec=" + path + "/tell-home %U\n";
        write_app("data", "zebra", exec + "Name=Zebra\n");
        write_app("system", "org.example.Editor",
                  exec + "Name=Editor\nName[de]=Schreiber\nComment=Writes things\nIcon=editor\n");
        write_app("system", "sub/mail", exec + "Name=Mail\nIcon=/icons/mail.png\n");
        write_app("system", "zebra", exec + "Name=Not the user's own\n");
        write_app("data", "console", exec + "Name=Console\nTerminal=true\n");
        write_app("data", "no-exec", "Name=No Exec\n");

        write("config/mimeapps.list",
              "[Default Applications]\nx-scheme-handler/kestrel-test=zebra.desktop\n");

        write_app("data", "no-display", exec + "Name=x\nNoDisplay=true\n");
        write_app("data", "deleted", exec + "Name=x\nHidden=true\n");
        write_app("data", "elsewhere", exec + "Name=x\nOnlyShowIn=Elsewhere;\n");
        write_app("data", "no-program", "Exec=" + path + "/missing\nName=x\n");
        write("outside.desktop", "[Desktop Entry]\nType=Application\nName=x\n" + exec);
    }
    void TearDown() override { directory_.reset(); }

    const std::string& path() const { return directory_->path(); }

    // The HOME of the next launched program.
    std::string read_home() const { return pipe_->read(std::string(kHome).size()); }

  private:
    void write(const std::string& name, const std::string& content) const {
        const fs::path file = fs::path(path()) / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << content;
    }
    void write_app(const std::string& where, const std::string& id,
                   const std::string& lines) const {
        write(where + "/applications/" + id + ".desktop",
              "[Desktop Entry]\nType=Application\n" + lines);
    }

    std::optional<TemporaryDirectory> directory_{std::in_place};
    std::optional<HostEnd> pipe_;
};

// GoogleTest takes ownership.
const auto* const machine = static_cast<Machine*>(::testing::AddGlobalTestEnvironment(new Machine));

// The error of launching an application or opening a URI; "(nothing)" without a callback.
std::string outcome_of(void (InstalledApps::*start)(const std::string&, InstalledApps::Done),
                       const std::string& what) {
    InstalledApps apps(kHome);
    std::string error = "(nothing)";
    int calls = 0;
    (apps.*start)(what, [&](const std::string& text) {
        error = text;
        ++calls;
    });
    EXPECT_EQ(calls, 0) << "called inside the call";
    EXPECT_TRUE(run_main_loop_until([&] { return calls > 0; }));
    run_main_loop_until_idle();
    EXPECT_EQ(calls, 1);
    return error;
}

std::string launch(const std::string& id) { return outcome_of(&InstalledApps::launch, id); }
std::string open(const std::string& uri) { return outcome_of(&InstalledApps::open, uri); }

TEST(InstalledApps, ListsVisibleAppsSortedByName) {
    EXPECT_THAT(
        InstalledApps(kHome).list(),
        ElementsAre(FieldsAre("console.desktop", "Console", "", ""),
                    FieldsAre("org.example.Editor.desktop", "Editor", "Writes things", "editor"),
                    FieldsAre("sub-mail.desktop", "Mail", "", "/icons/mail.png"),
                    FieldsAre("no-exec.desktop", "No Exec", "", ""),
                    FieldsAre("zebra.desktop", "Zebra", "", "")));
}

TEST(InstalledApps, LaunchesInTheUsersOwnHome) {
    for (const char* id : {"zebra.desktop", "sub-mail.desktop"}) {
        EXPECT_EQ(launch(id), "");
        EXPECT_EQ(machine->read_home(), kHome);
    }
}

TEST(InstalledApps, FindsAppsById) {
    EXPECT_THAT(InstalledApps(kHome).find("org.example.Editor.desktop"),
                Optional(FieldsAre("org.example.Editor.desktop", "Editor", _, "editor")));
    EXPECT_FALSE(InstalledApps(kHome).find("no-display.desktop"));
    EXPECT_FALSE(InstalledApps(kHome).find(""));
}

TEST(InstalledApps, OpensWithTheUsersDefaultApplication) {
    EXPECT_EQ(open("kestrel-test:page"), "");
    EXPECT_EQ(machine->read_home(), kHome);
    for (const char* uri : {"kestrel-unheard-of:page", "file:///missing", "nonsense", ""}) {
        EXPECT_NE(open(uri), "") << uri;
    }
}

TEST(InstalledApps, ReportsWhyALaunchFails) {
    EXPECT_THAT(launch("console.desktop"), HasSubstr("terminal"));
    EXPECT_THAT(launch("no-exec.desktop"), HasSubstr("Exec"));
    for (const std::string id :
         {"", "unknown", "no-display.desktop", "deleted.desktop", "elsewhere.desktop",
          "no-program.desktop", "../../outside.desktop", "outside.desktop"}) {
        EXPECT_EQ(launch(id), "no application is installed as " + id);
    }
    const std::string path = machine->path() + "/outside.desktop";
    EXPECT_EQ(launch(path), "no application is installed as " + path);
}

TEST(InstalledApps, CallsNothingAfterDestruction) {
    {
        InstalledApps apps(kHome);
        for (const char* id : {"no-exec.desktop", "unknown"}) {
            apps.launch(id, [](const std::string&) { FAIL() << "called"; });
        }
    }
    // This answer arrives after theirs would have arrived.
    EXPECT_THAT(launch("no-exec.desktop"), HasSubstr("Exec"));
}

TEST(InstalledApps, MayBeDestroyedInTheCallback) {
    auto apps = std::make_unique<InstalledApps>(kHome);
    apps->launch("unknown", [&](const std::string&) { apps.reset(); });
    apps->launch("unknown", [](const std::string&) { FAIL() << "called"; });
    EXPECT_TRUE(run_main_loop_until([&] { return apps == nullptr; }));
    run_main_loop_until_idle();
}

}  // namespace
}  // namespace kestrel::testing
