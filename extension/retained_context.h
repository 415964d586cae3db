#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <memory>
#include <type_traits>

namespace kestrel {

struct ContextDeleter {
    void operator()(JSGlobalContextRef context) const { JSGlobalContextRelease(context); }
};

// A script context that stays alive, whatever the script that runs in it does to its page.
using RetainedContext = std::unique_ptr<std::remove_pointer_t<JSGlobalContextRef>, ContextDeleter>;

}  // namespace kestrel
