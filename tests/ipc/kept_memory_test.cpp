// What stays of one message's memory for the next one's items.
#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "ipc/webkit_client.h"
#include "tests/ipc/message_block.h"
#include "tests/ipc/recorded_handlers.h"
#include "tests/support/frame_bytes.h"

namespace kestrel::testing {
namespace {

// The sizes of the blocks of memory that a message's items came in.
struct Blocks {
    std::size_t ints;
    std::size_t strings;
    std::size_t text;  // the first string's
};

Blocks blocks_of(const std::string& bytes) {
    static Blocks blocks;
    RecordedHandlers handlers;
    handlers.table()[2] = [](int* ints, std::string* strings) {
        const bool is_in_place = strings->capacity() <= std::string().capacity();
        blocks = {malloc_usable_size(ints), malloc_usable_size(strings),
                  is_in_place ? 0 : malloc_usable_size(strings->data())};
    };
    const Frame frame = message_block(bytes);
    webkit_message* message = frame.get();
    webkit_client::processMessage(message);
    return blocks;
}

Blocks blocks_of_a_short_message() { return blocks_of(frame_bytes(2, {"1"}, {"short"})); }

// As many items, all of them empty, as the counts say.
std::string empty_items(int ints, int strings) {
    const int items = ints + strings;
    return header_bytes(2, ints, strings, items) + std::string(static_cast<std::size_t>(items), 0);
}

constexpr std::size_t kMebibyte = 1UL << 20;

TEST(KeptMemory, OfAMessageOfOrdinarySizeServesTheNextOne) {
    EXPECT_GT(blocks_of(empty_items(1'000, 1'000)).ints, 3'999U);
    EXPECT_GT(blocks_of_a_short_message().ints, 3'999U);
    EXPECT_GT(blocks_of(frame_bytes(2, {}, {std::string(kMebibyte, 'x')})).text, kMebibyte);
    EXPECT_GT(blocks_of_a_short_message().text, kMebibyte);
}

TEST(KeptMemory, OfALongTextIsGivenBack) {
    const std::string text(4 * kMebibyte, 'x');
    EXPECT_GT(blocks_of(frame_bytes(2, {}, {text, text, text})).text, 4 * kMebibyte);
    EXPECT_LT(blocks_of_a_short_message().text, kMebibyte);
}

// A list takes more memory than its items' bytes: four for each integer, an object for each string.
TEST(KeptMemory, OfALongListIsGivenBack) {
    EXPECT_GT(blocks_of(empty_items(4'000'000, 0)).ints, 15 * kMebibyte);
    EXPECT_LT(blocks_of_a_short_message().ints, kMebibyte);
    EXPECT_GT(blocks_of(empty_items(0, 400'000)).strings, 12 * kMebibyte);
    EXPECT_LT(blocks_of_a_short_message().strings, kMebibyte);
}

}  // namespace
}  // namespace kestrel::testing
