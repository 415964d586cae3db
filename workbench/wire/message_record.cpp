#include "workbench/wire/message_record.h"

#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "trace/frame_text.h"
#include "workbench/desktop/valid_utf8.h"

namespace kestrel {

MessageRecord record_of(Direction direction, int pid, const webkit_message& message) {
    MessageRecord record;
    record.time = std::chrono::system_clock::now();
    record.direction = direction;
    record.pid = pid;
    record.frame = copy_of(message);
    record.size = bytes_of(message).size();
    return record;
}

MessageRecord record_of(std::string_view note) {
    MessageRecord record;
    record.time = std::chrono::system_clock::now();
    record.note = valid_utf8(note);
    return record;
}

std::string_view type_name(const MessageRecord& record) {
    if (!record.frame) return "";
    const MessageType* type = find_type(record.direction, record.frame->msg_type);
    return type == nullptr ? kUnknownType : type->name;
}

}  // namespace kestrel
