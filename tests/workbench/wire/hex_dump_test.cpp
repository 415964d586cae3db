#include "workbench/wire/hex_dump.h"

#include <gmock/gmock.h>

#include "tests/support/frame_bytes.h"

namespace kestrel::testing {
namespace {

TEST(HexDump, ShowsOffsetsBytesAndCharacters) {
    EXPECT_EQ(hex_dump(frame_bytes(18, {}, {"key\xc3\xbc", "on~Item"}), 100),
              "00000000  12 00 00 00 00 00 00 00  02 00 00 00 0e 00 00 00  |................|\n"
              "00000010  6b 65 79 c3 bc 00 6f 6e  7e 49 74 65 6d 00        |key...on~Item.|\n");
}

TEST(HexDump, IsEmptyWithoutBytes) { EXPECT_EQ(hex_dump({}, 10), ""); }

TEST(HexDump, CountsBytesAfterTheLimit) {
    EXPECT_EQ(hex_dump(std::string(40, 'a'), 18),
              "00000000  61 61 61 61 61 61 61 61  61 61 61 61 61 61 61 61  |aaaaaaaaaaaaaaaa|\n"
              "00000010  61 61                                             |aa|\n"
              "22 more bytes\n");
}

}  // namespace
}  // namespace kestrel::testing
