#include "tests/workbench/wire/message_records.h"

#include "ipc/frame_builder.h"

namespace kestrel::testing {
namespace {

MessageRecord record(Direction direction, int type, std::initializer_list<std::string_view> strings,
                     int pid) {
    MessageRecord made = record_of(direction, pid, *build_frame(type, {}, strings));
    made.time = kRecordTime;
    return made;
}

}  // namespace

MessageRecord from_page(int type, std::initializer_list<std::string_view> strings, int pid) {
    return record(Direction::from_page, type, strings, pid);
}

MessageRecord to_page(int type, std::initializer_list<std::string_view> strings, int pid) {
    return record(Direction::to_page, type, strings, pid);
}

MessageRecord later(MessageRecord record, std::chrono::microseconds by) {
    record.time += by;
    return record;
}

}  // namespace kestrel::testing
