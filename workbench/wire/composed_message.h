// Builds messages to the page from typed text.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "ipc/frame.h"

namespace kestrel {

struct ComposedMessage {
    Frame frame;          // null if it cannot be sent
    std::string problem;  // the reason, or ""
};

ComposedMessage compose_script(std::string_view script);

// The callback expression must not be empty; any number of arguments may follow.
ComposedMessage compose_answer(std::string_view callback,
                               std::span<const std::string_view> arguments);

// The URL must not be empty. Without resources, the page gets no ZYNS.
ComposedMessage compose_page(std::string_view url, std::string_view resources);

}  // namespace kestrel
