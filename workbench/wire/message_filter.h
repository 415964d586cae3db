#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/wire/message_record.h"

namespace kestrel {

// A filter of words. A message matches if each word is its type number or process id, or occurs in
// its type name, a string item, the decimal text of an integer item, or the note. ASCII case is
// ignored. Any text is a valid filter; "" matches all messages.
class MessageFilter {
  public:
    MessageFilter() = default;
    explicit MessageFilter(std::string_view text);

    bool matches(const MessageRecord& record) const;

  private:
    std::vector<std::string> words_;
};

}  // namespace kestrel
