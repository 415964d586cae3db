// Functions of the object `bench` that a page call is compared with.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <type_traits>

namespace kestrel::bench {

using ScriptFunction = std::remove_pointer_t<JSObjectCallAsFunctionCallback>;

// prepare(size): readTexts and convert write frames of up to `size` bytes.
ScriptFunction prepare;

// readTexts(text...): the least that a library must do. Gets the text of each argument, reads its
// characters, which have two bytes each, copies one byte for each, and writes the prepared frame
// once.
ScriptFunction read_texts;

// convert(text...): converts the texts with JSStringGetUTF8CString into the prepared frame and
// writes it once.
ScriptFunction convert;

}  // namespace kestrel::bench
