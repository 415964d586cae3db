#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>

namespace kestrel {

struct ScriptStringDeleter {
    void operator()(JSStringRef string) const { JSStringRelease(string); }
};

// An owned script string.
using ScriptString = std::unique_ptr<std::remove_pointer_t<JSStringRef>, ScriptStringDeleter>;

// From NUL-terminated UTF-8.
ScriptString make_script_string(const char* utf8);

// `value` converted to a string by script's rules; null, after an error line, if that throws. May
// run the page's script.
ScriptString text_of(JSContextRef context, JSValueRef value);

// The same as UTF-8, cut at its first U+0000 or unpaired surrogate. `text` stays as it was when the
// conversion throws.
void read_text(JSContextRef context, JSValueRef value, std::string& text);

// Writes an error line if `exception`, null for none, has no text; otherwise nothing.
void check_exception(JSContextRef context, JSValueRef exception);

// How many bytes `text`, null for "", takes as UTF-8 up to its first U+0000 or unpaired surrogate:
// an upper bound that is known at once, and the exact number, which needs a pass over the text.
std::size_t utf8_room(JSStringRef text);
std::size_t utf8_size(JSStringRef text);

// Writes those bytes to `to` and returns their end. Needs utf8_room and one byte more, or utf8_size
// and kUtf8Slack.
char* write_utf8(JSStringRef text, char* to);

}  // namespace kestrel
