#include "benchmarks/extension/library_facts.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <map>
#include <string>

namespace kestrel::bench {

LibraryFacts facts_of(void* library) {
    link_map* map = nullptr;
    if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0) return {};
    std::map<ElfW(Sxword), std::size_t> sizes;
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
        sizes[entry->d_tag] = entry->d_un.d_val;
    }
    return {(sizes[DT_RELASZ] + sizes[DT_PLTRELSZ]) / sizeof(ElfW(Rela)),
            sizes[DT_INIT_ARRAYSZ] / sizeof(void (*)())};
}

std::size_t resident_bytes() {
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string word; file >> word;) {
        std::size_t kilobytes = 0;
        if (word == "Rss:" && file >> kilobytes) return kilobytes * 1024;
    }
    return 0;
}

double nanoseconds_to_load(const char* path) {
    std::array<double, 15> times{};
    for (double& time : times) {
        const auto start = std::chrono::steady_clock::now();
        void* const library = dlopen(path, RTLD_NOW);
        const std::chrono::duration<double, std::nano> taken =
            std::chrono::steady_clock::now() - start;
        if (library == nullptr) return 0;
        dlclose(library);
        time = taken.count();
    }
    std::ranges::sort(times);
    return times[times.size() / 2];
}

}  // namespace kestrel::bench
