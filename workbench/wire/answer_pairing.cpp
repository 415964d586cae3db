#include "workbench/wire/answer_pairing.h"

#include <algorithm>

#include "ipc/items.h"
#include "workbench/answers/commands.h"

namespace kestrel {
namespace {

// These limit the memory, and the work for one answer.
constexpr std::size_t kMaxUnanswered = 1'024;
constexpr std::size_t kMaxCallback = 4'096;
constexpr std::size_t kSearched = 16'384;

// The callback that a request passed, or "".
std::string_view callback_of(const webkit_message& request) {
    const Command* command = find_command(request.msg_type);
    ItemViews items;
    if (command == nullptr || !command->calls_back() || !decode_items(request, items)) return "";
    const auto index = static_cast<std::size_t>(command->callback);
    return index < items.strings.size() ? items.strings[index] : "";
}

std::string_view expression_of(const webkit_message& answer) {
    ItemViews items;
    if (!decode_items(answer, items) || items.strings.empty()) return "";
    return items.strings.front().substr(0, kSearched);
}

constexpr bool belongs_to_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

// The position of `callback` in `expression`, not as a part of a longer name.
std::size_t position_in(std::string_view expression, std::string_view callback) {
    std::size_t at = expression.find(callback);
    for (; at != std::string_view::npos; at = expression.find(callback, at + 1)) {
        const std::size_t end = at + callback.size();
        const bool is_name_tail =
            at > 0 && belongs_to_name(expression[at - 1]) && belongs_to_name(callback.front());
        const bool is_name_head = end < expression.size() && belongs_to_name(expression[end]) &&
                                  belongs_to_name(callback.back());
        if (!is_name_tail && !is_name_head) break;
    }
    return at;
}

}  // namespace

std::optional<std::uint64_t> AnswerPairing::add(std::uint64_t serial, const MessageRecord& record) {
    if (!record.frame) return std::nullopt;
    if (record.direction == Direction::from_page) {
        // The process id may have been reused by a new process.
        if (record.frame->msg_type == to_host("announce")) {
            unanswered_.remove_if([&](const Unanswered& each) { return each.pid == record.pid; });
        }
        remember(serial, record);
        return std::nullopt;
    }
    if (record.frame->msg_type != to_page("answer")) return std::nullopt;
    const auto found = record.answer_to == 0
                           ? find(record.pid, expression_of(*record.frame))
                           : std::ranges::find(unanswered_, record.answer_to, &Unanswered::serial);
    if (found == unanswered_.end()) {
        return record.answer_to == 0 ? std::nullopt : std::optional(record.answer_to);
    }
    const std::uint64_t request = found->serial;
    unanswered_.erase(found);
    return request;
}

void AnswerPairing::remember(std::uint64_t serial, const MessageRecord& record) {
    const std::string_view callback = callback_of(*record.frame);
    if (callback.empty() || callback.size() > kMaxCallback) return;
    unanswered_.push_back({serial, record.pid, std::string(callback)});
    if (unanswered_.size() > kMaxUnanswered) unanswered_.pop_front();
}

std::list<AnswerPairing::Unanswered>::iterator AnswerPairing::find(int pid,
                                                                   std::string_view expression) {
    auto best = unanswered_.end();
    std::size_t best_position = std::string_view::npos;
    for (auto each = unanswered_.begin(); each != unanswered_.end(); ++each) {
        if (each->pid != pid) continue;
        const std::size_t position = position_in(expression, each->callback);
        if (position == std::string_view::npos) continue;
        if (best == unanswered_.end() || position < best_position ||
            (position == best_position && each->callback.size() > best->callback.size())) {
            best = each;
            best_position = position;
        }
    }
    return best;
}

}  // namespace kestrel
