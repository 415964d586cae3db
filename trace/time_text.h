#pragma once

#include <chrono>
#include <string>

namespace kestrel {

// "14:03:59.000021", local time.
std::string local_time(std::chrono::system_clock::time_point time);

// "2026-11-21T13:03:59.000021Z", UTC.
std::string utc_time(std::chrono::system_clock::time_point time);

}  // namespace kestrel
