// The page's locale comes from the client's message catalogue, as the process's language finds it.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/temporary_directory.h"
#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

void compile_catalogue(const std::string& root, const std::string& language,
                       const std::string& translation) {
    const std::string directory = root + "/nls/" + language + "/LC_MESSAGES";
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/kestrel.po")
        << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n"
        << "msgid \"TwigLang\"\nmsgstr \"" << translation << "\"\n";
    const std::string command =
        "msgfmt -o " + directory + "/kestrel.mo " + directory + "/kestrel.po";
    ASSERT_EQ(std::system(command.c_str()), 0);
}

TEST_F(StoreTest, TakesTheLocaleFromACompiledCatalogue) {
    const TemporaryDirectory root;
    compile_catalogue(root.path(), "de", "de-de,de;q=0.5");
    setenv("LANGUAGE", "de", 1);
    host.listen();
    StoreView store(root.path(), "{}");
    store.load("");
    EXPECT_EQ(store.evaluate("ZYNS.getLocale()"), "de-de,de;q=0.5");
}

TEST_F(StoreTest, FallsBackToEnglishForALanguageWithoutACatalogue) {
    const TemporaryDirectory root;
    compile_catalogue(root.path(), "de", "de-de,de;q=0.5");
    setenv("LANGUAGE", "fr", 1);
    host.listen();
    StoreView store(root.path(), "{}");
    store.load("");
    EXPECT_EQ(store.evaluate("ZYNS.getLocale()"), "en-gb,en;q=0.5");
}

}  // namespace
}  // namespace kestrel::testing
