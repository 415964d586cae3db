#pragma once

#include <cstdint>

// The floor of a log call: a function of another library with the same arguments that does nothing.
extern "C" [[gnu::format(printf, 6, 7)]] void empty_call(std::uint32_t log_class, int level,
                                                         const char* aux1, const char* aux2,
                                                         std::uint64_t aux3, const char* format,
                                                         ...);
