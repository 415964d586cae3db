// Actions on stored items and on subscriptions in the user's order.
#include <charconv>

#include "ipc/protocol.h"
#include "workbench/answers/actions.h"

namespace kestrel {
namespace {

// The room that a message has for the value's literal, next to its callback.
constexpr std::size_t kMaxItem = kMaxInboundPayload - 65'536;

// 0 if the text is not a number.
std::size_t position_of(const std::string& text) {
    std::size_t position = 0;
    std::from_chars(text.data(), text.data() + text.size(), position);
    return position;
}

}  // namespace

void get_item(Services& services, const Request& request, const Reply& reply) {
    const auto value = services.database.item(request.text(0));
    reply(value ? ScriptValue(*value) : ScriptValue());
}

void set_item(Services& services, const Request& request, const Reply& reply) {
    const bool fits = script_literal(request.text(1)).size() <= kMaxItem;
    if (fits) services.database.set_item(request.text(0), request.text(1));
    reply(fits);
}

void subscribe(Services& services, const Request& request, const Reply& reply) {
    services.database.subscribe(request.text(0));
    reply(services.database.subscriptions());
}

void unsubscribe(Services& services, const Request& request, const Reply& reply) {
    services.database.unsubscribe(request.text(0));
    reply(services.database.subscriptions());
}

void move_subscription(Services& services, const Request& request, const Reply& /*reply*/) {
    services.database.move(request.text(0), position_of(request.text(1)));
}

}  // namespace kestrel
