#include "log/levels_and_classes.h"
#include "log/shared_config.h"
#include "log/zynlog_config.h"

using kestrel::kLogClassCount;
using kestrel::kLogFailure;
using kestrel::kLogLevelCount;
using kestrel::logging::change_config;
using kestrel::logging::config;
using kestrel::logging::kClassTable;
using kestrel::logging::kDefaultConfig;
using kestrel::logging::kLevelTable;
using kestrel::logging::load;
using kestrel::logging::SharedLogConfig;
using kestrel::logging::store;

namespace {

bool is_class(std::uint32_t log_class) { return config() != nullptr && log_class < kLogClassCount; }
bool is_level(std::uint32_t level) { return config() != nullptr && level < kLogLevelCount; }

std::uint32_t number(std::uint32_t SharedLogConfig::*field) {
    SharedLogConfig* const shared = config();
    return shared == nullptr ? kLogFailure : load(shared->*field);
}

template <typename Change>
int set(const Change& change) {
    return change_config(change) ? 1 : 0;
}

int set_number(std::uint32_t SharedLogConfig::*field, std::uint32_t value) {
    return set([=](SharedLogConfig& shared) { store(shared.*field, value); });
}

}  // namespace

int ZynLogEnableFlags(std::uint32_t bits) {
    return set([=](SharedLogConfig& shared) {
        std::atomic_ref(shared.flags).fetch_or(bits, std::memory_order_relaxed);
    });
}

int ZynLogDisableFlags(std::uint32_t bits) {
    return set([=](SharedLogConfig& shared) {
        std::atomic_ref(shared.flags).fetch_and(~bits, std::memory_order_relaxed);
    });
}

int ZynLogGetCurrentFlags(std::uint32_t* flags) {
    SharedLogConfig* const shared = config();
    if (shared == nullptr || flags == nullptr) return 0;
    *flags = load(shared->flags);
    return 1;
}

int ZynLogGetDefaultFlags(std::uint32_t* flags) {
    if (config() == nullptr || flags == nullptr) return 0;
    *flags = kDefaultConfig.flags;
    return 1;
}

int ZynLogSetCurrentLevel(std::uint32_t log_class, std::uint32_t level) {
    if (log_class >= kLogClassCount || level >= kLogLevelCount) return 0;
    return set([=](SharedLogConfig& shared) { store(shared.levels[log_class], level); });
}

std::uint32_t ZynLogGetCurrentLevel(std::uint32_t log_class) {
    SharedLogConfig* const shared = config();
    if (shared == nullptr || log_class >= kLogClassCount) return kLogFailure;
    return load(shared->levels[log_class]);
}

std::uint32_t ZynLogGetDefaultLevel(std::uint32_t log_class) {
    return is_class(log_class) ? kDefaultConfig.levels[log_class] : kLogFailure;
}

std::uint32_t ZynLogGetWorkingLevel(std::uint32_t log_class) {
    return kestrel::logging::working_level(log_class);
}

std::uint32_t ZynLogGetParent(std::uint32_t log_class) {
    if (!is_class(log_class)) return kLogFailure;
    return static_cast<std::uint32_t>(kClassTable[log_class].parent);
}

const char* ZynLogGetClassName(std::uint32_t log_class) {
    return is_class(log_class) ? kClassTable[log_class].name : nullptr;
}

const char* ZynLogGetClassDisplayName(std::uint32_t log_class) {
    return is_class(log_class) ? kClassTable[log_class].displayName : nullptr;
}

const char* ZynLogGetLevelName(std::uint32_t level) {
    return is_level(level) ? kLevelTable[level].name : nullptr;
}

const char* ZynLogGetLevelDisplayName(std::uint32_t level) {
    return is_level(level) ? kLevelTable[level].displayName : nullptr;
}

int ZynLogSetOutputPath(const char* path) {
    if (path == nullptr) return 0;
    return set([=](SharedLogConfig& shared) { kestrel::logging::set_output_path(shared, path); });
}

const char* ZynLogGetOutputPath() {
    SharedLogConfig* const shared = config();
    return shared == nullptr ? nullptr : shared->output_path.data();
}

int ZynLogSetRolloverSize(int size) {
    if (size < kestrel::kLogMinRolloverSize || size > kestrel::kLogMaxRolloverSize) return 0;
    return set_number(&SharedLogConfig::rollover_size, static_cast<std::uint32_t>(size));
}

int ZynLogSetRolloverCount(std::uint32_t count) {
    if (count > kestrel::kLogMaxRolloverCount) return 0;
    return set_number(&SharedLogConfig::rollover_count, count);
}

int ZynLogSetSessionMax(std::uint32_t sessions) {
    if (sessions > kestrel::kLogMaxSessions) return 0;
    return set_number(&SharedLogConfig::session_max, sessions);
}

std::uint32_t ZynLogGetRolloverSize() { return number(&SharedLogConfig::rollover_size); }
std::uint32_t ZynLogGetRolloverCount() { return number(&SharedLogConfig::rollover_count); }
std::uint32_t ZynLogGetSessionMax() { return number(&SharedLogConfig::session_max); }
