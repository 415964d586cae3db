#include "ipc/incoming_message.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <string>
#include <utility>

#include "ipc/protocol.h"
#include "log/zynlog.h"

namespace kestrel {
namespace {

// The items that messages are decoded into are kept from one to the next together with their
// memory, unless that has grown large. Never destroyed: the reader outlives static destruction.
constexpr std::size_t kMostKept = 8UL * 1024 * 1024;
constinit std::atomic<Items*> kept_items = nullptr;

std::unique_ptr<Items> take_kept_items() {
    std::unique_ptr<Items> items(kept_items.exchange(nullptr));
    return items ? std::move(items) : std::make_unique<Items>();
}

void keep(std::unique_ptr<Items> items) {
    std::size_t memory =
        items->ints.capacity() * sizeof(int) + items->strings.capacity() * sizeof(std::string);
    for (const std::string& text : items->strings) memory += text.capacity();
    if (memory <= kMostKept) delete kept_items.exchange(items.release());
}

webkit_client::InboundHandler handler_of(std::int32_t type) {
    const bool has_slot = type >= 0 && type < static_cast<std::int32_t>(kInboundHandlerSlots);
    const bool has_table = has_slot && webkit_client::func_array != nullptr;
    return has_table ? webkit_client::func_array[type] : nullptr;
}

}  // namespace

IncomingMessage::IncomingMessage(const webkit_message& header)
    : type_(header.msg_type), handler_(handler_of(header.msg_type)) {
    if (handler_ == nullptr) problem_ = "no handler";
    unless_dropped([&] {
        items_ = take_kept_items();
        decoder_.emplace(header, *items_);
    });
}

IncomingMessage::~IncomingMessage() {
    if (items_) keep(std::move(items_));
}

template <typename Action>
void IncomingMessage::unless_dropped(Action action) {
    if (problem_ != nullptr) return;
    try {
        action();
    } catch (const std::bad_alloc&) {
        problem_ = "out of memory";
    }
}

void IncomingMessage::take(std::span<const char> bytes) {
    unless_dropped([&] { decoder_->take(bytes); });
}

void IncomingMessage::dispatch() {
    unless_dropped([&] {
        if (!decoder_->is_complete()) {
            problem_ = "its items do not fit its header";
            return;
        }
        auto& strings = items_->strings;
        strings.resize(std::max(strings.size() + 1, kMinHandlerStrings));
        handler_(items_->ints.data(), strings.data());
    });
    if (problem_ == nullptr) return;
    __ZynTrace(kLogWebkit, kError, "", "", 0, "Dropped a message of type %d: %s\n", type_,
               problem_);
}

}  // namespace kestrel
