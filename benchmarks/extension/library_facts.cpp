#include "benchmarks/extension/library_facts.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

namespace kestrel::bench {
namespace {

struct Unload {
    void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, Unload>;

Library load(const char* path) {
    Library library(dlopen(path, RTLD_NOW));
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(EXIT_FAILURE);
    }
    return library;
}

}  // namespace

LibraryFacts facts_of(const char* path) {
    const Library library = load(path);
    link_map* map = nullptr;
    if (dlinfo(library.get(), RTLD_DI_LINKMAP, &map) != 0) return {};
    std::map<ElfW(Sxword), std::size_t> sizes;
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
        sizes[entry->d_tag] = entry->d_un.d_val;
    }
    return {(sizes[DT_RELASZ] + sizes[DT_PLTRELSZ]) / sizeof(ElfW(Rela)),
            sizes[DT_INIT_ARRAYSZ] / sizeof(void (*)())};
}

double nanoseconds_to_load(const char* path) {
    std::array<double, 15> times{};
    for (double& time : times) {
        const auto start = std::chrono::steady_clock::now();
        const Library library = load(path);
        const std::chrono::duration<double, std::nano> taken =
            std::chrono::steady_clock::now() - start;
        time = taken.count();
    }
    std::ranges::sort(times);
    return times[times.size() / 2];
}

}  // namespace kestrel::bench
