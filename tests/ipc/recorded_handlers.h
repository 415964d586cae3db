#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "ipc/webkit_client.h"

namespace kestrel::testing {

// One call of an inbound handler.
struct Dispatch {
    int slot;
    std::vector<int> ints;
    std::vector<std::string> strings;

    friend bool operator==(const Dispatch&, const Dispatch&) = default;
};

// For its lifetime, the one table of handlers in use: slots 0, 1, 34 and 60 hold handlers that keep
// what they are called with, the others hold none. The same handlers lie on both sides of the
// table, so that a call by an index outside it is seen.
class RecordedHandlers {
  public:
    // A handler isn't told how many items it gets: each keeps this many.
    explicit RecordedHandlers(std::size_t ints = 0, std::size_t strings = kMinHandlerStrings);
    ~RecordedHandlers();
    RecordedHandlers(const RecordedHandlers&) = delete;
    RecordedHandlers& operator=(const RecordedHandlers&) = delete;

    webkit_client::InboundHandler* table() { return slots_.data() + 1; }

    std::vector<Dispatch> dispatches() const;

    // Waits until this many calls have come, ten seconds at most; false if they did not.
    bool wait_for(std::size_t calls) const;

  private:
    template <int Slot>
    static void record(int* ints, std::string* strings);

    static RecordedHandlers* current_;

    std::array<webkit_client::InboundHandler, kInboundHandlerSlots + 2> slots_{};
    std::size_t ints_;
    std::size_t strings_;
    mutable std::mutex lock_;
    mutable std::condition_variable changed_;
    std::vector<Dispatch> dispatches_;
};

}  // namespace kestrel::testing
