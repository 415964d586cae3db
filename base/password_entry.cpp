#include "base/password_entry.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace kestrel {
namespace {

// Directory services may return long entries. The limit is for a broken service that always asks
// for more.
constexpr std::size_t kFirstBuffer = 1'024;
constexpr std::size_t kLargestBuffer = 1'048'576;

std::string text_or_empty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

PasswordEntry password_entry_of_caller() {
    std::vector<char> buffer(kFirstBuffer);
    passwd entry{};
    passwd* found = nullptr;
    while (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < kLargestBuffer) {
        buffer.resize(buffer.size() * 2);
    }
    if (found == nullptr) return {};
    return {text_or_empty(found->pw_name), text_or_empty(found->pw_dir)};
}

}  // namespace kestrel
