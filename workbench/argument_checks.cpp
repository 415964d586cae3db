#include "workbench/argument_checks.h"

#include <gio/gio.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "program/translation.h"
#include "workbench/desktop/glib_handles.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

std::string absolute(const std::string& path) {
    const GlibText text(g_canonicalize_filename(path.c_str(), nullptr));
    return text.get();
}

// `text` has two %s: the option and the given value.
[[noreturn]] void fail(const char* text, const std::string& option, const std::string& given) {
    throw UsageError(formatted(text, option.c_str(), given.c_str()));
}

}  // namespace

std::string existing_directory(const std::string& option, const std::string& path) {
    std::string full = absolute(path);
    std::error_code ignored;
    if (!fs::is_directory(full, ignored)) {
        fail(translate("%s: no such directory: %s"), option, path);
    }
    if (g_utf8_validate(full.c_str(), -1, nullptr) == FALSE) {
        fail(translate("%s: the path is not UTF-8: %s"), option, path);
    }
    return full;
}

std::string existing_file(const std::string& option, const std::string& path) {
    std::string full = absolute(path);
    std::error_code ignored;
    if (!fs::is_regular_file(full, ignored)) {
        fail(translate("%s: no such file: %s"), option, path);
    }
    return full;
}

std::string future_file(const std::string& option, const std::string& path) {
    std::string full = absolute(path);
    std::error_code ignored;
    if (!fs::is_directory(fs::path(full).parent_path(), ignored) ||
        fs::is_directory(full, ignored)) {
        fail(translate("%s: cannot write %s"), option, path);
    }
    return full;
}

std::string page_address(const std::string& option, const std::string& page) {
    const GlibText scheme(g_uri_parse_scheme(page.c_str()));
    if (scheme) {
        if (g_uri_is_valid(page.c_str(), G_URI_FLAGS_NONE, nullptr) == FALSE) {
            fail(translate("%s: not a valid URL: %s"), option, page);
        }
        return page;
    }
    const GlibText uri(g_filename_to_uri(existing_file(option, page).c_str(), nullptr, nullptr));
    return uri.get();
}

std::string text_of_file(const std::string& option, const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file.is_open() || file.bad()) {
        fail(translate("%s: cannot read %s"), option, path);
    }
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE) {
        fail(translate("%s: not UTF-8 text: %s"), option, path);
    }
    return text;
}

}  // namespace kestrel
