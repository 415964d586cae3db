#include "ipc/webkit_util.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "ipc/frame_builder.h"
#include "ipc/items.h"

namespace {

// Copies the item into the scratch buffer, clears the rest of it, and moves the position on.
std::string_view take_item(int& position, const char* payload, char* scratch) {
    constexpr std::size_t kScratchSize = kestrel::kMaxInboundPayload;
    const std::string_view item(payload + position);
    const std::size_t copied = std::min(item.size(), kScratchSize - 1);
    std::memcpy(scratch, item.data(), copied);
    std::memset(scratch + copied, 0, kScratchSize - copied);
    position += static_cast<int>(item.size()) + 1;
    return {scratch, copied};
}

}  // namespace

// The lists come by value because the exported signature says so.
webkit_message* webkit_util::wrapMessage(int type,
                                         std::vector<int> ints,             // NOLINT
                                         std::vector<std::string> strings)  // NOLINT
{
    return kestrel::build_frame_of_strings(type, ints, strings).release();
}

int webkit_util::parseNextInt(int& position, char* payload, char*& scratch) {
    return kestrel::parse_int(take_item(position, payload, scratch));
}

std::string webkit_util::parseNextString(int& position, char* payload, char*& scratch) {
    return std::string(take_item(position, payload, scratch));
}
