// The tables that everything else takes its codes and names from.
#include "ipc/protocol.h"

#include <gtest/gtest.h>

#include <set>

namespace kestrel::testing {
namespace {

TEST(ProtocolTest, EveryCodeAndNameIsUsedOnce) {
    std::set<std::int32_t> codes;
    std::set<std::string_view> names;
    for (const std::span<const MessageType> table :
         {std::span<const MessageType>(kToHost), std::span<const MessageType>(kToPage)}) {
        for (const MessageType& type : table) {
            EXPECT_TRUE(codes.insert(type.code).second) << type.code;
            EXPECT_TRUE(names.insert(type.name).second) << type.name;
        }
    }
}

TEST(ProtocolTest, EveryInboundTypeHasASlot) {
    for (const MessageType& type : kToPage) {
        EXPECT_GE(type.code, 0) << type.name;
        EXPECT_LT(type.code, static_cast<std::int32_t>(kInboundHandlerSlots)) << type.name;
    }
}

TEST(ProtocolTest, HandlersMayIndexEveryAjaxArgument) {
    EXPECT_GT(kMinHandlerStrings, kAjaxArguments);
}

TEST(ProtocolTest, FindsTypesByCodeWithinOneDirection) {
    ASSERT_NE(find_type(kToHost, 61), nullptr);
    EXPECT_EQ(find_type(kToHost, 61)->name, "announce");
    EXPECT_EQ(find_type(kToPage, 61), nullptr);
    EXPECT_EQ(find_type(kToHost, -1), nullptr);
}

}  // namespace
}  // namespace kestrel::testing
