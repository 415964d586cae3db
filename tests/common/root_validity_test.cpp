#include <gtest/gtest.h>

#include <filesystem>

#include "common/LinuxCommonUtils.h"
#include "tests/common/client_tree.h"
#include "tests/common/separate_root.h"

namespace kestrel::testing {
namespace {

class RootValidityTest : public ::testing::Test {
  protected:
    RootValidityTest() { install_client(root); }

    TemporaryDirectory directory;
    std::string root = directory.path() + "/client";
};

TEST_F(RootValidityTest, ACompleteInstallationIsValid) {
    EXPECT_TRUE(LinuxCommonUtils::ifValidQUOROOT(root));
    EXPECT_TRUE(LinuxCommonUtils::ifValidQUOROOT(root + "/"));
}

TEST_F(RootValidityTest, AcceptsFilesOfEveryType) {
    std::filesystem::remove(root + "/ServiceLedger");
    std::filesystem::create_directory(root + "/ServiceLedger");
    EXPECT_TRUE(LinuxCommonUtils::ifValidQUOROOT(root));
}

class MissingFileTest : public RootValidityTest,
                        public ::testing::WithParamInterface<const char*> {};

TEST_P(MissingFileTest, MakesTheRootInvalid) {
    std::filesystem::remove(root + "/" + GetParam());
    EXPECT_FALSE(LinuxCommonUtils::ifValidQUOROOT(root));
}

INSTANTIATE_TEST_SUITE_P(EveryFile, MissingFileTest, ::testing::ValuesIn(kClientFiles));

TEST_F(RootValidityTest, AMissingDirectoryIsInvalid) {
    EXPECT_FALSE(LinuxCommonUtils::ifValidQUOROOT(root + "/missing"));
}

TEST_F(RootValidityTest, AnEmptyPathIsInvalid) {
    if (!SeparateRoot::is_possible()) GTEST_SKIP() << "may not change the root directory";
    const SeparateRoot system;
    install_client(system.outside(""));
    EXPECT_EQ(system
                  .run({},
                       [] {
                           return std::string(LinuxCommonUtils::ifValidQUOROOT("") ? "valid" : "") +
                                  (LinuxCommonUtils::ifValidQUOROOT("/") ? "/ valid" : "");
                       })
                  .result,
              "/ valid");
}

}  // namespace
}  // namespace kestrel::testing
