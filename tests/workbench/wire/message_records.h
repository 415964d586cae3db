// Message records for tests.
#pragma once

#include <chrono>
#include <initializer_list>
#include <string_view>

#include "workbench/wire/message_record.h"

namespace kestrel::testing {

// 2026-11-21 13:03:59.000021 UTC
inline constexpr std::chrono::system_clock::time_point kRecordTime{
    std::chrono::microseconds(1'795'266'239'000'021)};

// A message of process 42 at kRecordTime.
MessageRecord from_page(int type, std::initializer_list<std::string_view> strings, int pid = 42);
MessageRecord to_page(int type, std::initializer_list<std::string_view> strings, int pid = 42);

// The same record at a later time.
MessageRecord later(MessageRecord record, std::chrono::microseconds by);

}  // namespace kestrel::testing
