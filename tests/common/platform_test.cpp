#include "common/platform.h"

#include <gtest/gtest.h>

namespace kestrel::testing {
namespace {

TEST(PlatformTest, MapsNamesToDirectories) {
    EXPECT_EQ(utilities::platform_directory("linux"), "linuxx86");
    EXPECT_EQ(utilities::platform_directory("x86"), "linuxx86");
    EXPECT_EQ(utilities::platform_directory("linux64"), "linuxx64");
    EXPECT_EQ(utilities::platform_directory("x64"), "linuxx64");
}

TEST(PlatformTest, MapsUnknownNamesToArm) {
    for (const char* name : {"armhf", "arm64", "", "Linux", "linux6", "linux640", "x"}) {
        EXPECT_EQ(utilities::platform_directory(name), "linuxarmhf") << name;
    }
}

TEST(PlatformTest, NamesTheBuild) {
#if defined(__x86_64__)
    EXPECT_EQ(utilities::kPlatformName, "linux64");
#elif defined(__i386__)
    EXPECT_EQ(utilities::platform_directory(utilities::kPlatformName), "linuxx86");
#else
    EXPECT_EQ(utilities::platform_directory(utilities::kPlatformName), "linuxarmhf");
#endif
}

}  // namespace
}  // namespace kestrel::testing
