#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <memory>
#include <type_traits>

namespace kestrel {

struct ScriptStringDeleter {
    void operator()(JSStringRef string) const { JSStringRelease(string); }
};

// A script string of ours.
using ScriptString = std::unique_ptr<std::remove_pointer_t<JSStringRef>, ScriptStringDeleter>;

inline ScriptString make_script_string(const char* utf8) {
    return ScriptString(JSStringCreateWithUTF8CString(utf8));
}

}  // namespace kestrel
