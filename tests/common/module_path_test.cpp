#include <gtest/gtest.h>

#include <filesystem>

#include "common/LinuxCommonUtils.h"
#include "tests/common/separate_root.h"

namespace kestrel::testing {
namespace {

TEST(ModulePathTest, IsTheRunningProgram) {
    EXPECT_EQ(LinuxCommonUtils::GetModulePath(),
              std::filesystem::read_symlink("/proc/self/exe").string());
}

class ModulePathInSeparateRootTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!SeparateRoot::is_possible()) GTEST_SKIP() << "may not change the root directory";
    }

    std::string module_path() const {
        return system.run({}, LinuxCommonUtils::GetModulePath).result;
    }

    SeparateRoot system;
};

TEST_F(ModulePathInSeparateRootTest, IsUnknownIfTheLinkCannotBeRead) {
    EXPECT_EQ(module_path(), "<unknown>");
}

TEST_F(ModulePathInSeparateRootTest, IsTheTargetOfTheLink) {
    system.set_executable("/client/util/tool (deleted)");
    EXPECT_EQ(module_path(), "/client/util/tool (deleted)");
}

TEST_F(ModulePathInSeparateRootTest, IsCompleteAtTheMaximumLength) {
    const std::string longest = "/" + std::string(4'094, 'x');
    system.set_executable(longest);
    EXPECT_EQ(module_path(), longest);
}

}  // namespace
}  // namespace kestrel::testing
