#include "tests/ipc/recorded_handlers.h"

#include <chrono>

namespace kestrel::testing {

RecordedHandlers* RecordedHandlers::current_ = nullptr;

template <int Slot>
void RecordedHandlers::record(int* ints, std::string* strings) {
    const std::scoped_lock guard(current_->lock_);
    current_->dispatches_.push_back(
        {Slot, {ints, ints + current_->ints_}, {strings, strings + current_->strings_}});
    current_->changed_.notify_all();
}

RecordedHandlers::RecordedHandlers(std::size_t ints, std::size_t strings)
    : ints_(ints), strings_(strings) {
    slots_.front() = record<-1>;
    slots_.back() = record<61>;
    table()[0] = record<0>;
    table()[1] = record<1>;
    table()[34] = record<34>;
    table()[60] = record<60>;
    current_ = this;
    webkit_client::func_array = table();
}

RecordedHandlers::~RecordedHandlers() {
    webkit_client::func_array = nullptr;
    current_ = nullptr;
}

std::vector<Dispatch> RecordedHandlers::dispatches() const {
    const std::scoped_lock guard(lock_);
    return dispatches_;
}

bool RecordedHandlers::wait_for(std::size_t calls) const {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, std::chrono::seconds(10),
                             [&] { return dispatches_.size() >= calls; });
}

}  // namespace kestrel::testing
