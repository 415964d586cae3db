#include "log/shared_config.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "base/file_descriptor.h"
#include "log/own_links.h"
#include "log/sigbus_guard.h"
#include "log/zynlog_paths.h"

namespace kestrel::logging {

constinit std::atomic<SharedLogConfig*> mapped_config = nullptr;

namespace {

// The address of the first mapping, reused by all later ones. A page of zeros is mapped there in
// the meantime.
constinit std::atomic<void*> mapping_address = nullptr;

// Every user's processes and the daemon share the file, so its mode must not depend on the umask.
FileDescriptor open_config_file() {
    const char* const path = GetConfigFilePath();  // creates directories, under the caller's umask
    umask(0);
    FileDescriptor file = open_through_own_links(path, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    umask(022);
    return file;
}

SharedLogConfig* map_file(int fd) {
    void* const address = mapping_address;
    const int fixed = address == nullptr ? 0 : MAP_FIXED;
    void* const mapping =
        mmap(address, sizeof(SharedLogConfig), PROT_READ | PROT_WRITE, MAP_SHARED | fixed, fd, 0);
    if (mapping == MAP_FAILED) return nullptr;
    mapping_address = mapping;
    return static_cast<SharedLogConfig*>(mapping);
}

const SharedLogConfig& default_config() {
    static const SharedLogConfig defaults = [] {
        SharedLogConfig record = kDefaultConfig;
        set_output_path(record, GetLogFilePath());
        return record;
    }();
    return defaults;
}

}  // namespace

void set_output_path(SharedLogConfig& shared, const char* path) {
    for (char& byte : shared.output_path) {
        std::atomic_ref(byte).store(*path, std::memory_order_relaxed);
        if (*path != '\0') ++path;
    }
}

void write_defaults(SharedLogConfig& shared) {
    const SharedLogConfig& defaults = default_config();
    store(shared.flags, defaults.flags);
    for (std::size_t i = 0; i < defaults.levels.size(); ++i) {
        store(shared.levels[i], defaults.levels[i]);
    }
    set_output_path(shared, defaults.output_path.data());
    store(shared.rollover_size, defaults.rollover_size);
    store(shared.rollover_count, defaults.rollover_count);
    store(shared.session_max, defaults.session_max);
    std::atomic_ref(shared.magic).store(defaults.magic, std::memory_order_release);
}

void map_shared_config() {
    const FileDescriptor file = open_config_file();
    if (!file.is_open() || ftruncate(file.get(), sizeof(SharedLogConfig)) == -1) return;
    SharedLogConfig* const shared = map_file(file.get());
    if (shared == nullptr) return;
    set_sigbus_guard(shared, &default_config(), sizeof(SharedLogConfig));
    if (std::atomic_ref(shared->magic).load(std::memory_order_acquire) != kConfigMagic) {
        write_defaults(*shared);
    }
    mapped_config.store(shared, std::memory_order_release);
}

void unmap_shared_config() {
    SharedLogConfig* const shared = mapped_config.exchange(nullptr);
    if (shared == nullptr) return;
    // Not munmap: a thread that read the pointer earlier may still access it. Not mmap with
    // MAP_FIXED, which the thread sanitizer treats as a write.
    void* const zeros = mmap(nullptr, sizeof(SharedLogConfig), PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (zeros == MAP_FAILED) return;
    if (mremap(zeros, sizeof(SharedLogConfig), sizeof(SharedLogConfig),
               MREMAP_MAYMOVE | MREMAP_FIXED, shared) == MAP_FAILED) {
        munmap(zeros, sizeof(SharedLogConfig));  // the file stays mapped and guarded
        return;
    }
    lift_sigbus_guard();
}

}  // namespace kestrel::logging
