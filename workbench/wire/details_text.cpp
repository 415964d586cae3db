#include "workbench/wire/details_text.h"

#include <algorithm>

#include "base/terminal_text.h"
#include "ipc/frame.h"
#include "ipc/items.h"
#include "program/translation.h"
#include "trace/frame_text.h"
#include "workbench/wire/hex_dump.h"
#include "workbench/wire/row_text.h"

namespace kestrel {
namespace {

// Text views are slow with long lines and long texts.
constexpr std::size_t kMaxCharacters = 8'192;
constexpr std::size_t kMaxItems = 256;
constexpr std::size_t kMaxDumped = 65'536;

std::string heading(const LoggedMessage& message) {
    const MessageRecord& record = *message.record;
    std::string text = '#' + std::to_string(message.serial) + "  " + time_text(record.time);
    if (record.frame) {
        const bool is_from_page = record.direction == Direction::from_page;
        const std::string process = record.pid == 0 ? "?" : std::to_string(record.pid);
        text += "  " +
                formatted(is_from_page ? translate("from process %s") : translate("to process %s"),
                          process.c_str());
        text += "  " + type_text(record);
    }
    return text + '\n';
}

std::string partner_line(const LoggedMessage& message) {
    if (!message.partner) return "";
    const bool is_answer = message.partner->serial < message.serial;
    return formatted(is_answer ? translate("answers #%llu, %s after it\n")
                               : translate("answered by #%llu, %s later\n"),
                     static_cast<unsigned long long>(message.partner->serial),
                     duration_text(message.partner->between).c_str());
}

std::string header_lines(const webkit_message& frame) {
    return "msg_type             " + std::to_string(frame.msg_type) + "\nnum_of_ints          " +
           std::to_string(frame.num_of_ints) + "\nnum_of_strings       " +
           std::to_string(frame.num_of_strings) + "\ntotal_len_of_string  " +
           std::to_string(frame.total_len_of_string) + '\n';
}

std::string numbered(std::size_t number, const std::string& item) {
    return '[' + std::to_string(number) + "] " + item + '\n';
}

std::string item_lines(const webkit_message& frame) {
    ItemViews items;
    if (!decode_items(frame, items)) return translate("The items do not fit the header.\n");
    std::string text;
    for (std::size_t i = 0; i < std::min(items.ints.size(), kMaxItems); ++i) {
        text += "int " + numbered(i, std::to_string(items.ints[i]));
    }
    for (std::size_t i = 0; i < std::min(items.strings.size(), kMaxItems); ++i) {
        text += "string " + numbered(i, quoted(items.strings[i], kMaxCharacters));
    }
    const std::size_t more = items.ints.size() - std::min(items.ints.size(), kMaxItems) +
                             items.strings.size() - std::min(items.strings.size(), kMaxItems);
    if (more > 0) text += formatted(translate("%zu more items\n"), more);
    return text.empty() ? translate("No items.\n") : text;
}

}  // namespace

std::string details_text(const LoggedMessage& message) {
    const MessageRecord& record = *message.record;
    if (!record.frame) return heading(message) + '\n' + record.note + '\n';
    return heading(message) + partner_line(message) + '\n' + header_lines(*record.frame) + '\n' +
           item_lines(*record.frame) + '\n' +
           (record.is_exact ? hex_dump(bytes_of(*record.frame), kMaxDumped)
                            : translate("The trace does not contain the bytes of this message.\n"));
}

}  // namespace kestrel
