#include "workbench/desktop/catalogues.h"

#include <glib.h>

#include <algorithm>
#include <filesystem>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kCatalogue = "LC_MESSAGES/kestrel.mo";

}  // namespace

std::vector<std::string> locales_with_catalogue(const std::string& install_root) {
    std::vector<std::string> locales;
    std::error_code error;
    for (fs::directory_iterator entry(install_root + "/nls", error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code missing;
        const std::string name = entry->path().filename();
        // A name that is not UTF-8 can be neither shown nor passed as an argument.
        if (g_utf8_validate(name.c_str(), -1, nullptr) != FALSE &&
            fs::is_regular_file(entry->path() / kCatalogue, missing)) {
            locales.push_back(name);
        }
    }
    std::ranges::sort(locales);
    return locales;
}

}  // namespace kestrel
