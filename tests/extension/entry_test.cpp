// The library's entry, in a process of its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/frame_bytes.h"
#include "tests/support/listening_host.h"
#include "tests/support/process.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

constexpr const char* kUserData = "['/opt/x', '{a: 1}']";
constexpr const char* kNoRoot =
    "quoroot path not found, some of the strings will not be translated\n";
constexpr const char* kNoClientDirectory = ".QUOClient not created, anomoly use case, exiting\n";

// A process that runs the entry.
class EntryProcess : public Process {
  public:
    EntryProcess(const std::string& home, const std::string& locale, const char* user_data,
                 const char* extension)
        : Process({ENTRY_DRIVER, EXTENSION, user_data, extension},
                  {.environment = {"HOME=" + home, "LC_ALL=" + locale}}) {}

    // Closes the standard input of the process and waits for its end.
    ProcessResult end() {
        close_input();
        const int status = wait();
        return {status, output(), errors()};
    }
};

class Entry : public ::testing::Test {
  protected:
    ProcessResult run(const char* user_data, const char* extension) const {
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
    const ProcessResult result = EntryProcess(home.path(), "C", kUserData, "null").end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "Extension is null\n: Numerical argument out of domain\n");
    EXPECT_EQ(report_of(kUserData), report("/opt/x", "{a: 1}", "not connected"));
}

TEST_F(Entry, EndsTheProcessWithoutAClientDirectory) {
    const ProcessResult result = run(kUserData, "given");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, kNoClientDirectory);
    EXPECT_EQ(result.output, report("/opt/x", "{a: 1}", "connected"));
    EXPECT_TRUE(std::filesystem::is_empty(home.path()));
}

TEST_F(Entry, LooksForTheClientDirectoryInTheRootDirectoryWithoutAHome) {
    const ProcessResult result = EntryProcess("", "C.UTF-8", kUserData, "given").end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, kNoClientDirectory);
}

TEST_F(Entry, ContinuesWithAnEmptyInstallRoot) {
    const ProcessResult result = run("['', '{a: 1}']", "given");
    EXPECT_EQ(result.error, std::string(kNoRoot) + kNoClientDirectory);
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
    const ListeningHost host(home.path() + "/.QUOClient/webkit_socket2");
    EntryProcess process(home.path(), "C.UTF-8", kUserData, "given");
    const HostEnd connection = host.accept();
    EXPECT_EQ(connection.read_frame(), frame_bytes(61, {std::to_string(process.pid())}, {}));

    const ProcessResult result = process.end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "entry returned\n" + report("/opt/x", "{a: 1}", "connected"));
    EXPECT_EQ(result.error, "");
}

TEST_F(Entry, ReturnsWithoutALinkWhenTheSocketPathIsTooLong) {
    const std::string long_home = home.path() + "/" + std::string(200, 'x');
    std::filesystem::create_directories(long_home + "/.QUOClient");
    const ProcessResult result = EntryProcess(long_home, "C.UTF-8", kUserData, "given").end();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "webkit_client::initComm socket path over 107 bytes, not connecting\n");
    EXPECT_EQ(result.output, "entry returned\n" + report("/opt/x", "{a: 1}", "connected"));
}

}  // namespace
}  // namespace kestrel::testing
