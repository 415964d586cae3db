// A message of the host's on its way to its handler.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "ipc/item_decoder.h"
#include "ipc/webkit_client.h"

namespace kestrel {

// First the payload, in pieces of any length, then dispatch. A message that no handler wants, whose
// items do not fit its header or that no memory is left for is dropped with a log line. The
// reader's thread, or a caller of processMessage.
class IncomingMessage {
  public:
    explicit IncomingMessage(const webkit_message& header);
    ~IncomingMessage();
    IncomingMessage(const IncomingMessage&) = delete;
    IncomingMessage& operator=(const IncomingMessage&) = delete;

    void take(std::span<const char> bytes);

    // Calls the handler, with the documented number of strings at least.
    void dispatch();

  private:
    template <typename Action>
    void unless_dropped(Action action);

    std::int32_t type_;
    webkit_client::InboundHandler handler_;
    const char* problem_ = nullptr;  // why it is dropped
    std::unique_ptr<Items> items_;
    std::optional<ItemDecoder> decoder_;
};

}  // namespace kestrel
