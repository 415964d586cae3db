// The page's locale comes from the client's message catalogue in the language of the environment.
#include <cstdlib>
#include <filesystem>

#include "program/language.h"
#include "tests/support/temporary_directory.h"
#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

using Catalogue = StoreTest;

// Compiles the example catalogue of a language into an install root.
void compile_catalogue(const std::string& root, const std::string& language) {
    const std::string directory = root + "/nls/" + language + "/LC_MESSAGES";
    std::filesystem::create_directories(directory);
    const std::string command = "msgfmt --check --output-file='" + directory +
                                "/kestrel.mo' '" EXAMPLE_CATALOGUES "/" + language + ".po'";
    ASSERT_EQ(std::system(command.c_str()), 0);
}

TEST_F(Catalogue, SetsTheLocale) {
    const TemporaryDirectory root;
    compile_catalogue(root.path(), "de");
    compile_catalogue(root.path(), "fr");
    use_language("fr:de", client_directory());
    host.listen();
    StoreView store(root.path(), "{}");
    store.load("");
    EXPECT_EQ(store.evaluate("ZYNS.getLocale()"), "fr-fr,fr;q=0.8,en;q=0.5");
}

TEST_F(Catalogue, FallsBackToEnglish) {
    const TemporaryDirectory root;
    compile_catalogue(root.path(), "de");
    use_language("fr", client_directory());
    host.listen();
    StoreView store(root.path(), "{}");
    store.load("");
    EXPECT_EQ(store.evaluate("ZYNS.getLocale()"), "en-gb,en;q=0.5");
}

}  // namespace
}  // namespace kestrel::testing
