// The text of a page call's argument, on its way to the wire.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "jsapi/script_text.h"

namespace kestrel {

// UTF-8 in place.
struct ShortText {
    static constexpr std::size_t kLongest = 31;

    std::uint8_t size = 0;
    std::array<char, kLongest> bytes;
};

// To get a text from JavaScriptCore is most of what a short call costs. Short texts that come often
// as the same value, such as names that stand in the page's code, are therefore kept, and with them
// their virtual machine. Only on the thread of the page.
class ArgumentText {
  public:
    // "".
    ArgumentText() = default;

    // The text of `value` as script would show it; "", after an error line, if that throws. May run
    // script of the page's.
    ArgumentText(JSContextRef context, JSValueRef value);

    // As utf8_room, utf8_size and write_utf8.
    std::size_t room() const { return string_ ? utf8_room(string_.get()) : short_text_.size; }
    std::size_t size() const { return string_ ? utf8_size(string_.get()) : short_text_.size; }
    char* write(char* to) const;

  private:
    ScriptString string_;  // null when the short text is it
    ShortText short_text_;
};

// Lets go of the texts that are kept, for the page of `context` is left: each may hold on to a
// large text of which it is a part.
void forget_kept_texts(JSContextRef context);

}  // namespace kestrel
