// Whole messages, byte for byte, and their order.
#include <string>
#include <string_view>

#include "tests/jsapi/page_api.h"

namespace kestrel::testing {
namespace {

using namespace std::string_view_literals;

using Message = PageApiWithHost;

TEST_F(Message, WithoutItemsIsOnlyTheHeader) {
    call("external.logOff(1, 2, 3)");
    EXPECT_EQ(host.read_frame(),
              "\6\0\0\0"
              "\0\0\0\0"
              "\0\0\0\0"
              "\0\0\0\0"sv);
}

TEST_F(Message, SendsTheSecondCapabilitiesArgumentFirst) {
    call("external.getCapabilities('f', 'g')");
    EXPECT_EQ(host.read_frame(),
              "\2\0\0\0"
              "\0\0\0\0"
              "\2\0\0\0"
              "\4\0\0\0"
              "g\0f\0"sv);
}

TEST_F(Message, SendsIntegersAsDecimalText) {
    call("external.settingsMenu(10, 20, 110, 70)");
    EXPECT_EQ(host.read_frame(),
              "\12\0\0\0"
              "\4\0\0\0"
              "\0\0\0\0"
              "\15\0\0\0"
              "10\0"
              "20\0"
              "100\0"
              "50\0"sv);
}

TEST_F(Message, SendsAnEmptyStringAsItsNul) {
    call("external.openUrl('')");
    EXPECT_EQ(host.read_frame(),
              "\24\0\0\0"
              "\0\0\0\0"
              "\1\0\0\0"
              "\1\0\0\0"
              "\0"sv);
}

TEST_F(Message, SendsIntegersBeforeStrings) {
    call("external.recolorImage('a', 1, 2, 3, 4, 'b')");
    EXPECT_EQ(host.read_frame(),
              "\25\0\0\0"
              "\3\0\0\0"
              "\2\0\0\0"
              "\12\0\0\0"
              "1\0"
              "2\0"
              "3\0"
              "a\0"
              "b\0"sv);
}

TEST_F(Message, KeepsAnEmptyStringsPlace) {
    call("external.setItem('key', '', 'onSet')");
    EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"key", "", "onSet"}));
}

TEST_F(Message, IsSentForEveryCallInCallOrder) {
    call(R"(
        external.subscribe('app', '1');
        external.unsubscribe('app', '1');
        external.getAccountsAsync('one');
        external.getAccountsAsync('two');
        external.launchApp('app', '');
        external.launchApp('app', ''))");
    EXPECT_EQ(host.read_frame(), frame_bytes(12, {}, {"app", "1"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(13, {}, {"app", "1"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(3, {}, {"one"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(3, {}, {"two"}));
    EXPECT_EQ(host.read_frame(), frame_bytes(14, {}, {"app", ""}));
    EXPECT_EQ(host.read_frame(), frame_bytes(14, {}, {"app", ""}));
    EXPECT_TRUE(host.is_quiet());
}

TEST_F(Message, OfANestedCallIsSentFirst) {
    call("external.sendAction({toString() { external.refresh(); return 'outer' }})");
    EXPECT_EQ(host.read_frame(), frame_bytes(7, {}, {}));
    EXPECT_EQ(host.read_frame(), frame_bytes(5, {}, {"outer"}));
    EXPECT_TRUE(host.is_quiet());
}

}  // namespace
}  // namespace kestrel::testing
