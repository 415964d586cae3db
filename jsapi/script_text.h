#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <cstddef>
#include <memory>
#include <type_traits>

namespace kestrel {

struct ScriptStringDeleter {
    void operator()(JSStringRef string) const { JSStringRelease(string); }
};

// A script string of ours.
using ScriptString = std::unique_ptr<std::remove_pointer_t<JSStringRef>, ScriptStringDeleter>;

// Of a text that ends with its NUL.
ScriptString make_script_string(const char* utf8);

// The text of `value` as script would show it; null, after an error line, if that throws. May run
// script of the page's.
ScriptString text_of(JSContextRef context, JSValueRef value);

// How many bytes `text` takes as UTF-8, up to its first U+0000 or unpaired surrogate: no more than
// that many, known at once, and exactly, which takes a look at all of it.
std::size_t utf8_room(JSStringRef text);
std::size_t utf8_size(JSStringRef text);

// Writes those bytes to `to`; returns their end. There must be utf8_room and one byte more, or
// utf8_size and kUtf8Slack.
char* write_utf8(JSStringRef text, char* to);

}  // namespace kestrel
