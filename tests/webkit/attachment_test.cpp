// Objects that the extension adds to pages: `external` in the main frame, and ZYNS in the page that
// follows a resources message.
#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

using Attachment = ConnectedStoreTest;
using AttachmentAtStart = StoreTest;

TEST_F(Attachment, AddsThirtyFunctionsToTheMainFrame) {
    EXPECT_EQ(store.evaluate("(() => { let count = 0; for (const name in external)"
                             " count += typeof external[name] === 'function'; return count })()"),
              "30");
    EXPECT_EQ(store.evaluate("String(external)"), "[object JSAPI]");
}

TEST_F(Attachment, AddsNothingToSubframes) {
    store.load("<iframe srcdoc='<p>inner</p>'></iframe>");
    ASSERT_TRUE(store.wait_for("frames[0].document.body !== null"));
    EXPECT_EQ(store.evaluate("typeof frames[0].external"), "undefined");
    EXPECT_EQ(store.evaluate("typeof frames[0].ZYNS"), "undefined");
    EXPECT_EQ(store.evaluate("typeof external.getItem"), "function");
}

TEST_F(Attachment, RunsScriptsInTheMainFrameAfterASubframeLoads) {
    store.load("<iframe srcdoc='<p>inner</p>'></iframe>");
    ASSERT_TRUE(store.wait_for("frames[0].document.body !== null"));
    host.send(0, {"window.reached = true"});
    EXPECT_TRUE(store.wait_for("window.reached === true"));
}

TEST_F(Attachment, GivesResourcesToTheFirstPage) {
    EXPECT_EQ(store.evaluate("ZYNS.getResources().greeting"), "hello");
    EXPECT_EQ(store.evaluate("ZYNS.getLocale()"), "en-gb,en;q=0.5");
}

TEST_F(Attachment, GivesResourcesToOnePageOnly) {
    store.reload();
    EXPECT_EQ(store.evaluate("typeof external.getItem"), "function");
    EXPECT_EQ(store.evaluate("typeof window.ZYNS"), "undefined");
}

TEST_F(Attachment, GivesNewResourcesToTheNextPage) {
    host.send(34, {"file:///next", "{greeting: 'again'}"});
    ASSERT_TRUE(host.wait_for(35));
    EXPECT_EQ(host.frames(35)[0].payload, std::string("file:///next") + '\0');
    EXPECT_EQ(store.evaluate("ZYNS.getResources().greeting"), "hello");
    store.reload();
    EXPECT_EQ(store.evaluate("ZYNS.getResources().greeting"), "again");
}

TEST_F(AttachmentAtStart, AddsNoZynsForEmptyResources) {
    host.listen();
    StoreView store("", "");
    store.load("");
    ASSERT_TRUE(host.wait_for(61));
    EXPECT_EQ(store.evaluate("typeof external.getItem"), "function");
    EXPECT_EQ(store.evaluate("typeof window.ZYNS"), "undefined");
}

TEST_F(AttachmentAtStart, StartsWithoutUserData) {
    host.listen();
    StoreView store(nullptr);
    store.load("");
    ASSERT_TRUE(host.wait_for(61));
    EXPECT_EQ(store.evaluate("typeof external.getItem"), "function");
}

TEST_F(AttachmentAtStart, StartsWithUserDataOfAnotherType) {
    host.listen();
    StoreView store(g_variant_new_int32(7));
    store.load("");
    ASSERT_TRUE(host.wait_for(61));
    EXPECT_EQ(store.evaluate("typeof window.ZYNS"), "undefined");
}

TEST_F(Attachment, SendsAPageCallToTheHost) {
    EXPECT_EQ(store.evaluate("String(external.getCapabilities('f', 'g'))"), "undefined");
    ASSERT_TRUE(host.wait_for(2));
    EXPECT_EQ(host.frames(2)[0].payload, std::string("g\0f\0", 4));
}

}  // namespace
}  // namespace kestrel::testing
