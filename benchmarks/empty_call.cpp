#include "benchmarks/empty_call.h"

[[gnu::visibility("default")]] void empty_call(std::uint32_t /*log_class*/, int /*level*/,
                                               const char* /*aux1*/, const char* /*aux2*/,
                                               std::uint64_t /*aux3*/, const char* /*format*/,
                                               ...) {}
