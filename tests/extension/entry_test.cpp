// The library's entry, in a process of its own.
#include <gio/gio.h>
#include <gio/gunixsocketaddress.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/link_peer.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

constexpr const char* kUserData = "['/opt/x', '{a: 1}']";
constexpr const char* kNoRoot =
    "quoroot path not found, some of the strings will not be translated\n";
constexpr const char* kNoClientDirectory = ".QUOClient not created, anomoly use case, exiting\n";

struct ObjectUnref {
    void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Object = std::unique_ptr<T, ObjectUnref>;

struct Result {
    int status;
    std::string output;
    std::string errors;
};

// A process that runs the entry.
class EntryProcess {
  public:
    EntryProcess(const std::string& home, const char* locale, const char* user_data,
                 const char* extension) {
        const Object<GSubprocessLauncher> launcher(g_subprocess_launcher_new(
            static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE |
                                          G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                          G_SUBPROCESS_FLAGS_STDERR_PIPE)));
        g_subprocess_launcher_setenv(launcher.get(), "HOME", home.c_str(), TRUE);
        g_subprocess_launcher_setenv(launcher.get(), "LC_ALL", locale, TRUE);
        process_.reset(g_subprocess_launcher_spawn(launcher.get(), nullptr, ENTRY_DRIVER, EXTENSION,
                                                   user_data, extension, nullptr));
    }

    std::string pid() const { return g_subprocess_get_identifier(process_.get()); }

    // Ends the process's input and waits for its end.
    Result end() const {
        char* output = nullptr;
        char* errors = nullptr;
        g_subprocess_communicate_utf8(process_.get(), "", nullptr, &output, &errors, nullptr);
        const std::unique_ptr<char, decltype(&g_free)> owned_output(output, g_free);
        const std::unique_ptr<char, decltype(&g_free)> owned_errors(errors, g_free);
        const bool exited = g_subprocess_get_if_exited(process_.get()) != FALSE;
        return {exited ? g_subprocess_get_exit_status(process_.get()) : -1, output, errors};
    }

  private:
    Object<GSubprocess> process_;
};

// A host that listens at `path`. Waits ten seconds at most.
class ListeningHost {
  public:
    explicit ListeningHost(const std::string& path)
        : listener_(g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM,
                                 G_SOCKET_PROTOCOL_DEFAULT, nullptr)) {
        const Object<GSocketAddress> address(g_unix_socket_address_new(path.c_str()));
        g_socket_bind(listener_.get(), address.get(), TRUE, nullptr);
        g_socket_listen(listener_.get(), nullptr);
        g_socket_set_timeout(listener_.get(), 10);
    }

    // The first bytes of the next connection, which stays open.
    std::string accept(std::size_t size) {
        connection_.reset(g_socket_accept(listener_.get(), nullptr, nullptr));
        if (!connection_) return "no connection";
        g_socket_set_timeout(connection_.get(), 10);
        std::string bytes(size, '\0');
        const gssize got =
            g_socket_receive(connection_.get(), bytes.data(), bytes.size(), nullptr, nullptr);
        bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        return bytes;
    }

  private:
    Object<GSocket> listener_;
    Object<GSocket> connection_;
};

class Entry : public ::testing::Test {
  protected:
    Result run(const char* user_data, const char* extension) const {
        return EntryProcess(home.path(), "C.UTF-8", user_data, extension).end();
    }

    // The report of a process whose entry got this user data.
    std::string report_of(const char* user_data) const { return run(user_data, "null").output; }

    static std::string report(const std::string& install_root, const std::string& resources,
                              const std::string& attachment) {
        return "install root: " + install_root + "\nresources: " + resources +
               "\nlocale: C.UTF-8\ntext domain: kestrel\ncatalogue: " + install_root +
               "/nls/\ncode set: UTF-8\nattachment: " + attachment + "\n";
    }

    TemporaryDirectory home;
};

class EntryWithClientDirectory : public Entry {
  protected:
    EntryWithClientDirectory() { std::filesystem::create_directory(home.path() + "/.QUOClient"); }
};

TEST_F(Entry, EndsTheProcessWhenTheExtensionIsNull) {
    // In the locale C nothing before the message touches errno, which the driver has set.
    const Result result = EntryProcess(home.path(), "C", kUserData, "null").end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "Extension is null\n: Numerical argument out of domain\n");
    EXPECT_EQ(report_of(kUserData), report("/opt/x", "{a: 1}", "not connected"));
}

TEST_F(Entry, EndsTheProcessWithoutAClientDirectory) {
    const Result result = run(kUserData, "given");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, kNoClientDirectory);
    EXPECT_EQ(result.output, report("/opt/x", "{a: 1}", "connected"));
    EXPECT_TRUE(std::filesystem::is_empty(home.path()));
}

TEST_F(Entry, LooksForTheClientDirectoryInTheRootDirectoryWithoutAHome) {
    const Result result = EntryProcess("", "C.UTF-8", kUserData, "given").end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, kNoClientDirectory);
}

TEST_F(Entry, ContinuesWithAnEmptyInstallRoot) {
    const Result result = run("['', '{a: 1}']", "given");
    EXPECT_EQ(result.errors, std::string(kNoRoot) + kNoClientDirectory);
    EXPECT_EQ(result.output, report("", "{a: 1}", "connected"));
}

TEST_F(Entry, TreatsMissingUserDataAsEmpty) {
    EXPECT_EQ(report_of("['/opt/x']"), report("/opt/x", "", "not connected"));
    EXPECT_EQ(report_of("@as []"), report("", "", "not connected"));
    EXPECT_EQ(report_of("null"), report("", "", "not connected"));
}

TEST_F(Entry, TreatsUserDataOfAnotherTypeAsEmpty) {
    EXPECT_EQ(report_of("'/opt/x'"), report("", "", "not connected"));
    EXPECT_EQ(report_of("('/opt/x', '{a: 1}')"), report("", "", "not connected"));
    EXPECT_EQ(report_of("[1, 2]"), report("", "", "not connected"));
}

TEST_F(Entry, IgnoresFurtherStrings) {
    EXPECT_EQ(report_of("['/opt/x', '{a: 1}', 'more']"),
              report("/opt/x", "{a: 1}", "not connected"));
}

TEST_F(EntryWithClientDirectory, StartsTheLinkAndReturns) {
    ListeningHost host(home.path() + "/.QUOClient/webkit_socket2");
    const EntryProcess process(home.path(), "C.UTF-8", kUserData, "given");
    const std::string announcement = frame_bytes(61, {process.pid()}, {});
    EXPECT_EQ(host.accept(announcement.size()), announcement);

    const Result result = process.end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "entry returned\n" + report("/opt/x", "{a: 1}", "connected"));
    EXPECT_EQ(result.errors, "");
}

TEST_F(Entry, ReturnsWithoutALinkWhenTheSocketPathIsTooLong) {
    const std::string long_home = home.path() + "/" + std::string(200, 'x');
    std::filesystem::create_directories(long_home + "/.QUOClient");
    const Result result = EntryProcess(long_home, "C.UTF-8", kUserData, "given").end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors,
              "webkit_client::initComm socket path over 107 bytes, not connecting\n");
    EXPECT_EQ(result.output, "entry returned\n" + report("/opt/x", "{a: 1}", "connected"));
}

}  // namespace
}  // namespace kestrel::testing
