#include "tests/log/machine.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <spawn.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

std::optional<TemporaryDirectory> home_directory;
bool private_machine = false;

// Root needs no user namespace; others need one that maps them to themselves.
bool enter_mount_namespace() {
    if (unshare(CLONE_NEWNS) == 0) return true;
    const std::string uid = std::to_string(getuid());
    const std::string gid = std::to_string(getgid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) == -1) return false;
    write_file("/proc/self/setgroups", "deny");
    write_file("/proc/self/uid_map", uid + " " + uid + " 1");
    write_file("/proc/self/gid_map", gid + " " + gid + " 1");
    return true;
}

bool make_machine_private() {
    return enter_mount_namespace() &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 && cover("/var/log");
}

bool run_alone(const std::string& test_case) {
    std::string filter = "--gtest_filter=" + test_case;
    std::string brief = "--gtest_brief=1";
    std::string program = std::filesystem::read_symlink("/proc/self/exe");
    const std::array<char*, 4> arguments = {program.data(), filter.data(), brief.data(), nullptr};
    pid_t pid = 0;
    if (posix_spawn(&pid, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
        return false;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// If several cases are selected, runs each in a separate process and exits.
class OneProcessPerCase : public ::testing::Environment {
  public:
    void SetUp() override {
        const auto& tests = *::testing::UnitTest::GetInstance();
        if (tests.test_to_run_count() <= 1) return;
        int failures = 0;
        for (int suite = 0; suite < tests.total_test_suite_count(); ++suite) {
            failures += run_suite(*tests.GetTestSuite(suite));
        }
        std::printf("%d of %d failed\n", failures, tests.test_to_run_count());
        std::exit(failures == 0 ? 0 : 1);
    }

  private:
    static int run_suite(const ::testing::TestSuite& suite) {
        int failures = 0;
        for (int index = 0; index < suite.total_test_count(); ++index) {
            const ::testing::TestInfo& test = *suite.GetTestInfo(index);
            if (!test.should_run()) continue;
            if (!run_alone(std::string(suite.name()) + "." + test.name())) ++failures;
        }
        return failures;
    }
};

// In the process that runs the case.
class OwnHome : public ::testing::Environment {
  public:
    void SetUp() override {
        home_directory.emplace();
        setenv("HOME", home().c_str(), 1);
    }
    void TearDown() override { home_directory.reset(); }
};

}  // namespace

const std::string& home() { return home_directory->path(); }

std::string client_directory() {
    const std::string directory = home() + "/.QUOClient";
    std::filesystem::create_directories(directory);
    return directory;
}

std::string record_path() { return client_directory() + "/.zynlogconf"; }

std::string record_bytes() { return file_content(record_path()); }

bool cover(const std::string& directory) {
    return mount("none", directory.c_str(), "tmpfs", 0, "mode=0755") == 0;
}

bool has_private_machine() { return private_machine; }

void write_file(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::set<int> open_descriptors() {
    std::set<int> descriptors;
    for (int fd = 0; fd < 256; ++fd) {
        if (fcntl(fd, F_GETFD) != -1) descriptors.insert(fd);
    }
    return descriptors;
}

}  // namespace kestrel::testing

int main(int argc, char** argv) {
    using namespace kestrel::testing;
    testing::InitGoogleMock(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();

    private_machine = make_machine_private();
    if (!private_machine && std::filesystem::exists("/var/log/veltrane")) {
        std::fputs("These tests keep off a /var/log/veltrane that is in use.\n", stderr);
        return 1;
    }
    unsetenv("QUOROOT");
    testing::AddGlobalTestEnvironment(new OneProcessPerCase);
    testing::AddGlobalTestEnvironment(new OwnHome);
    return RUN_ALL_TESTS();
}
