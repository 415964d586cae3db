#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>

#include "common/LinuxCommonUtils.h"

namespace {

// libcap is loaded, not linked, so that programs start without it; the newest version first.
constexpr std::array kLibraries = {"libcap.so.2", "libcap.so.1"};

// Drops all capabilities except these two.
constexpr const char* kReducedSet = "= cap_dac_override+ep cap_dac_read_search+p";

struct Unload {
    void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, Unload>;

Library load_libcap() {
    for (const char* name : kLibraries) {
        if (Library library{dlopen(name, RTLD_LAZY)}) return library;
    }
    std::fputs("Unable to set the capability as libcap library is not found\n", stderr);
    return nullptr;
}

template <typename Function>
Function* resolve(const Library& library, const char* name) {
    void* const address = dlsym(library.get(), name);
    if (address == nullptr) std::fprintf(stderr, "%s unresolved: %s\n", name, dlerror());
    return reinterpret_cast<Function*>(address);
}

}  // namespace

int LinuxCommonUtils::drop_capability() {
    if (geteuid() != 0) return 0;

    Library library = load_libcap();
    // libcap's capability sets are opaque pointers. The search ends at the first missing function.
    auto* const from_text =
        library ? resolve<void*(const char*)>(library, "cap_from_text") : nullptr;
    auto* const set_proc = from_text ? resolve<int(void*)>(library, "cap_set_proc") : nullptr;
    auto* const free_set = set_proc ? resolve<int(void*)>(library, "cap_free") : nullptr;
    if (free_set == nullptr) {
        library.reset();
        std::fputs("Unable to get the capability reduction lib\n", stderr);
        return -1;
    }

    void* const set = from_text(kReducedSet);  // null makes the next call fail
    const bool is_applied = set_proc(set) == 0;
    if (!is_applied) std::fputs("cap_set_proc : failed\n", stderr);
    free_set(set);
    return is_applied ? 0 : -1;
}
