#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <memory>
#include <type_traits>

namespace kestrel {

struct ContextDeleter {
    void operator()(JSGlobalContextRef context) const { JSGlobalContextRelease(context); }
};

// A reference to a script context: script may close or leave the page that it runs in.
using RetainedContext = std::unique_ptr<std::remove_pointer_t<JSGlobalContextRef>, ContextDeleter>;

}  // namespace kestrel
