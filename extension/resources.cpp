#include "extension/resources.h"

#include <memory>
#include <mutex>
#include <utility>

#include "extension/page_globals.h"

namespace kestrel {
namespace {

constinit std::mutex lock;

// What g_resources points to if it is our copy: other programs may point it at texts of their own,
// which are not freed here. Never destroyed: the reader outlives static destruction.
constinit char* owned = nullptr;

void replace(char* copy, const char* text) {
    g_resources = text;
    delete[] std::exchange(owned, copy);
}

}  // namespace

void set_resources(std::string_view text) {
    auto copy = std::make_unique<char[]>(text.size() + 1);
    text.copy(copy.get(), text.size());
    const std::scoped_lock guard(lock);
    const char* shown = copy.get();
    replace(copy.release(), shown);
}

std::string take_resources() {
    const std::scoped_lock guard(lock);
    std::string text = g_resources == nullptr ? "" : g_resources;
    replace(nullptr, "");
    return text;
}

}  // namespace kestrel
