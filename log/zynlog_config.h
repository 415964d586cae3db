// The settings of the logging client, which all processes of the family and the log daemon share: a
// change is seen at once by all of them. Needs ZynLogInit or ZynLogInitConfigOnly (zynlog.h); until
// then, after ZynLogShutdown, and when the settings' file could not be mapped, every call fails.
//
// Failure values: 0 for the calls that return success, null for texts, kLogFailure for numbers. A
// call that fails changes nothing.
//
// When another process has cut the settings file short, or its disk is full, the process has only
// the default settings, as zynlog.h says. Until ZynLogShutdown and another init, calls that set
// something fail, and the others give the defaults.
//
// Any thread: numbers are read and written whole. The output path is not; let one thread set it.
#pragma once

#include <cstdint>

namespace kestrel {

inline constexpr std::uint32_t kLogFailure = 0xffff'ffff;
inline constexpr std::uint32_t kLogClassCount = 60;
inline constexpr std::uint32_t kLogLevelCount = 8;

// Levels of classes only: take the parent's; let nothing but kAlwaysOn pass.
inline constexpr std::uint32_t kLogInherit = 0;
inline constexpr std::uint32_t kLogNone = 7;

// The one flag that this library interprets: begin each line to the daemon with the thread's name.
// The others are the daemon's.
inline constexpr std::uint32_t kLogThreadNameFlag = 0x1000;

inline constexpr std::uint32_t kLogOutputPathSize = 256;
inline constexpr int kLogMinRolloverSize = 1;
inline constexpr int kLogMaxRolloverSize = 2000;
inline constexpr int kLogDefaultRolloverSize = 200;
inline constexpr std::uint32_t kLogMaxRolloverCount = 100;
inline constexpr std::uint32_t kLogDefaultRolloverCount = 2;
inline constexpr std::uint32_t kLogMaxSessions = 2000;
inline constexpr std::uint32_t kLogDefaultSessions = 200;

}  // namespace kestrel

extern "C" {

#pragma GCC visibility push(default)

// Sets, or clears, the flags that are set in `bits`. Returns 1.
int ZynLogEnableFlags(std::uint32_t bits);
int ZynLogDisableFlags(std::uint32_t bits);

// Puts the flag word, or its default, into `*flags`. Returns 1; 0 also when `flags` is null.
int ZynLogGetCurrentFlags(std::uint32_t* flags);
int ZynLogGetDefaultFlags(std::uint32_t* flags);

// Sets the class's own level. Returns 1; 0 also for a class above 59 or a level above 7.
int ZynLogSetCurrentLevel(std::uint32_t log_class, std::uint32_t level);

// The class's own level, or its default. A level that another program has left in the file is given
// as it is, even above 7. kLogFailure also for a class above 59.
std::uint32_t ZynLogGetCurrentLevel(std::uint32_t log_class);
std::uint32_t ZynLogGetDefaultLevel(std::uint32_t log_class);

// The level by which the class's lines are filtered: its own, or that of the nearest class above it
// that does not inherit. kLogFailure also for a class above 59, and when all inherit, the root too:
// then only kAlwaysOn lines pass.
std::uint32_t ZynLogGetWorkingLevel(std::uint32_t log_class);

// The index of the class's parent. kLogFailure also for the root and for a class above 59.
std::uint32_t ZynLogGetParent(std::uint32_t log_class);

// The class's key in capitals ("WEBKIT") and the text for people ("Webkit"). Null also for a class
// above 59. The texts are constants. Names "CLASS01" and the like are placeholders for components
// of the family that this library does not know.
const char* ZynLogGetClassName(std::uint32_t log_class);
const char* ZynLogGetClassDisplayName(std::uint32_t log_class);

// The same of a level. Null also above 7.
const char* ZynLogGetLevelName(std::uint32_t level);
const char* ZynLogGetLevelDisplayName(std::uint32_t level);

// Sets the file that the daemon writes to, cut to 256 bytes. Returns 1; 0 also when `path` is null.
int ZynLogSetOutputPath(const char* path);

// That file, in the mapped settings: the text changes with them, and must not be used after
// ZynLogShutdown. A path of 256 bytes has no terminator: read 256 bytes at most.
const char* ZynLogGetOutputPath();

// Sets how large a log file grows (1 to 2000), how many full ones are kept (0 to 100), and the
// session maximum (0 to 2000), in the daemon's units. Return 1; 0 also outside the range.
int ZynLogSetRolloverSize(int size);
int ZynLogSetRolloverCount(std::uint32_t count);
int ZynLogSetSessionMax(std::uint32_t sessions);

// The stored values, as they are in the file.
std::uint32_t ZynLogGetRolloverSize();
std::uint32_t ZynLogGetRolloverCount();
std::uint32_t ZynLogGetSessionMax();

#pragma GCC visibility pop
}
