// Which arguments are read, and in which order.
#include <string>

#include "tests/jsapi/page_api.h"

namespace kestrel::testing {
namespace {

class Reading : public PageApiWithHost {
  protected:
    Reading() {
        call(R"(
            order = '';
            text = name => ({toString() { order += name; return name }});
            number = name => ({valueOf() { order += name; return 1 }});
            touched = () => { order += '!'; throw new Error('touched') };
            untouchable = new Proxy({}, {get: touched, getPrototypeOf: touched, has: touched});
            undefined)");
    }
};

TEST_F(Reading, FollowsArgumentOrderEvenIfTheMessageDoesNot) {
    call("external.getCapabilities(text('a'), text('b'))");
    EXPECT_EQ(host.read_frame(), frame_bytes(2, {}, {"b", "a"}));
    EXPECT_EQ(page.text_of("order"), "ab");
}

TEST_F(Reading, ReadsAnArgumentOnceEvenIfItIsSentTwice) {
    call("external.settingsMenu(number('a'), number('b'), number('c'), number('d'))");
    EXPECT_EQ(host.read_frame(), frame_bytes(10, {"1", "1", "0", "0"}, {}));
    EXPECT_EQ(page.text_of("order"), "abcd");
}

TEST_F(Reading, FollowsArgumentOrderAcrossNumbersAndTexts) {
    call(
        "external.recolorImage(text('a'), number('b'), number('c'), number('d'), untouchable,"
        "                      text('f'))");
    EXPECT_EQ(host.read_frame(), frame_bytes(21, {"1", "1", "1"}, {"a", "f"}));
    EXPECT_EQ(page.text_of("order"), "abcdf");
}

TEST_F(Reading, SeesSideEffectsOfEarlierArguments) {
    call(R"(
        shared = ['before'];
        external.setItem({toString() { shared[0] = 'after'; return 'key' }}, shared, 'on'))");
    EXPECT_EQ(host.read_frame(), frame_bytes(19, {}, {"key", "after", "on"}));
}

TEST_F(Reading, ConvertsTheUnsentArgumentOfGetInstalledApps) {
    call("external.getInstalledApps(text('a'), text('b'))");
    EXPECT_EQ(host.read_frame(), frame_bytes(9, {}, {"b"}));
    EXPECT_EQ(page.text_of("order"), "ab");
    call("external.getInstalledApps(untouchable, 'b')");
    EXPECT_EQ(host.read_frame(), frame_bytes(9, {}, {"b"}));
    EXPECT_EQ(errors.text(), kBreakout);
}

TEST_F(Reading, DoesNotConvertIgnoredArguments) {
    call("external.goOnline(untouchable, 5)");
    EXPECT_EQ(host.read_frame(), frame_bytes(17, {}, {"5"}));
    call("external.writeTraceMessage('line', untouchable, untouchable, untouchable)");
    EXPECT_EQ(host.read_frame(), frame_bytes(15, {}, {"line"}));
    call("external.recolorImage('a', 1, 2, 3, untouchable, 'b')");
    EXPECT_EQ(host.read_frame(), frame_bytes(21, {"1", "2", "3"}, {"a", "b"}));
    EXPECT_EQ(page.text_of("order"), "");
    EXPECT_EQ(errors.text(), "");
}

}  // namespace
}  // namespace kestrel::testing
