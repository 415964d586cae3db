#include "program/language.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPlainLocale = "/usr/lib/locale/C.utf8";

bool has_catalogues(std::string_view locale) {
    return locale != "C" && locale != "POSIX" && !locale.starts_with("C.");
}

}  // namespace

void use_language(const std::string& language, const std::string& directory) {
    setenv("LANGUAGE", language.c_str(), 1);
    if (has_catalogues(std::setlocale(LC_MESSAGES, nullptr))) return;

    // glibc goes by the name: this is C.UTF-8 under the name of the first language.
    const std::string name = language.substr(0, language.find_first_of(":.@/")) + ".UTF-8";
    const fs::path link = fs::path(directory) / name;
    std::error_code error;
    fs::create_directory_symlink(kPlainLocale, link, error);
    if (!fs::exists(link / "LC_CTYPE", error)) {
        setenv("LC_ALL", "C.UTF-8", 1);  // has catalogues before glibc 2.39
        return;
    }
    setenv("LOCPATH", directory.c_str(), 1);
    setenv("LC_ALL", name.c_str(), 1);
}

}  // namespace kestrel
