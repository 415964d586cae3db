#include "ipc/dispatch.h"

#include <algorithm>
#include <new>

#include "ipc/items.h"
#include "ipc/webkit_client.h"
#include "log/zynlog.h"

namespace kestrel {
namespace {

webkit_client::InboundHandler handler_of(std::int32_t type) {
    const bool has_slot = type >= 0 && type < static_cast<std::int32_t>(kInboundHandlerSlots);
    const bool has_table = has_slot && webkit_client::func_array != nullptr;
    return has_table ? webkit_client::func_array[type] : nullptr;
}

// Why the message was dropped; null if it was not.
const char* try_dispatch(const webkit_message& message) {
    const webkit_client::InboundHandler handler = handler_of(message.msg_type);
    if (handler == nullptr) return "no handler";
    try {
        Items items;
        if (!decode_items(message, items)) return "its items do not fit its header";
        items.strings.resize(std::max(items.strings.size() + 1, kMinHandlerStrings));
        handler(items.ints.data(), items.strings.data());
    } catch (const std::bad_alloc&) {
        return "out of memory";
    }
    return nullptr;
}

}  // namespace

void dispatch_message(const webkit_message& message) {
    if (const char* const problem = try_dispatch(message)) {
        __ZynTrace(kLogWebkit, kError, "", "", 0, "Dropped a message of type %d: %s\n",
                   message.msg_type, problem);
    }
}

}  // namespace kestrel
