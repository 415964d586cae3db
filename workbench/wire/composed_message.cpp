#include "workbench/wire/composed_message.h"

#include <array>
#include <vector>

#include "ipc/frame_builder.h"
#include "program/translation.h"

namespace kestrel {
namespace {

std::string too_long_for_a_frame(std::size_t length) {
    return formatted(
        translate(
            "This message has %zu bytes; the extension accepts at most %d, so it was not sent."),
        length, kMaxInboundPayload);
}

// Checks the limit before anything is allocated.
ComposedMessage compose(std::int32_t type, std::span<const std::string_view> strings) {
    std::size_t length = 0;
    for (const std::string_view text : strings) {
        if (text.find('\0') != std::string_view::npos) {
            return {nullptr, translate("A string item cannot hold a NUL character.")};
        }
        length += text.size() + 1;
    }
    if (length > std::size_t{kMaxInboundPayload}) return {nullptr, too_long_for_a_frame(length)};
    Frame frame = build_frame(type, {}, strings);
    if (!frame) return {nullptr, translate("Not enough memory for this message.")};
    return {std::move(frame), ""};
}

}  // namespace

ComposedMessage compose_script(std::string_view script) {
    return compose(to_page("script"), std::array{script});
}

ComposedMessage compose_answer(std::string_view callback,
                               std::span<const std::string_view> arguments) {
    if (callback.empty()) return {nullptr, translate("An answer needs a callback expression.")};
    std::vector<std::string_view> strings = {callback};
    strings.insert(strings.end(), arguments.begin(), arguments.end());
    return compose(to_page("answer"), strings);
}

ComposedMessage compose_page(std::string_view url, std::string_view resources) {
    if (url.empty()) return {nullptr, translate("A page needs a URL.")};
    return compose(to_page("resourcesAndUrl"), std::array{url, resources});
}

}  // namespace kestrel
