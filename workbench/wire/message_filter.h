#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "workbench/wire/message_record.h"

namespace kestrel {

// What a person types to see fewer messages: words, each of which must be the number of the type or
// of the process, or part of the type's name, of a string item, or of the text of an integer item
// or note. The case of ASCII letters makes no difference. Any text is a filter; "" lets all pass.
class MessageFilter {
  public:
    MessageFilter() = default;
    explicit MessageFilter(std::string_view text);

    bool matches(const MessageRecord& record) const;

  private:
    std::vector<std::string> words_;
};

}  // namespace kestrel
