#include "workbench/wire/message_filter.h"

#include <algorithm>
#include <sstream>

#include "ipc/items.h"

namespace kestrel {
namespace {

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool is_part(const std::string& word, std::string_view text) {
    const auto found =
        std::search(text.begin(), text.end(), word.begin(), word.end(),
                    [](char in_text, char in_word) { return lower(in_text) == in_word; });
    return found != text.end();
}

bool is_in_items(const std::string& word, const ItemViews& items) {
    return std::ranges::any_of(items.strings,
                               [&](std::string_view text) { return is_part(word, text); }) ||
           std::ranges::any_of(items.ints,
                               [&](int value) { return is_part(word, std::to_string(value)); });
}

}  // namespace

MessageFilter::MessageFilter(std::string_view text) {
    std::string all(text);
    std::ranges::transform(all, all.begin(), lower);
    std::istringstream words(all);
    for (std::string word; words >> word;) words_.push_back(word);
}

bool MessageFilter::matches(const MessageRecord& record) const {
    if (words_.empty()) return true;
    ItemViews items;
    if (record.frame && !decode_items(*record.frame, items)) items = {};
    return std::ranges::all_of(words_, [&](const std::string& word) {
        return (record.frame && word == std::to_string(record.frame->msg_type)) ||
               word == std::to_string(record.pid) || is_part(word, type_name(record)) ||
               is_part(word, record.note) || is_in_items(word, items);
    });
}

}  // namespace kestrel
