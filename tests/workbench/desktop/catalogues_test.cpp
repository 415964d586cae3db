#include "workbench/desktop/catalogues.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Catalogues : public ::testing::Test {
  protected:
    void add(const std::string& file) const {
        const std::filesystem::path path = root.path() + "/nls/" + file;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "";
    }

    TemporaryDirectory root;
};

TEST_F(Catalogues, AreListedByLocaleName) {
    for (const char* locale : {"pt_BR", "de", "fr"}) {
        add(std::string(locale) + "/LC_MESSAGES/kestrel.mo");
    }
    EXPECT_THAT(locales_with_catalogue(root.path()), ElementsAre("de", "fr", "pt_BR"));
}

TEST_F(Catalogues, IgnoreOtherNamesAndDirectories) {
    add("de/LC_MESSAGES/other.mo");
    add("en/kestrel.mo");
    add("fr/LC_MESSAGES/kestrel.mo/file");
    add("it");
    add("\xff/LC_MESSAGES/kestrel.mo");
    EXPECT_THAT(locales_with_catalogue(root.path()), IsEmpty());
}

TEST_F(Catalogues, AreEmptyWithoutADirectory) {
    EXPECT_THAT(locales_with_catalogue(root.path()), IsEmpty());
    std::ofstream(root.path() + "/nls") << "";
    EXPECT_THAT(locales_with_catalogue(root.path()), IsEmpty());
}

}  // namespace
}  // namespace kestrel::testing
