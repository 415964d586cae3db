// The object `external` as the page sees it.
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "jsapi/method_table.h"
#include "tests/jsapi/expected_methods.h"
#include "tests/jsapi/page_api.h"

namespace kestrel::testing {
namespace {

using ExternalObject = PageApiWithHost;

std::string names_sorted_by_script(const ScriptContext& page) {
    std::string list;
    for (const ExpectedMethod& method : expected_methods()) {
        list += "'" + std::string(method.name) + "',";
    }
    return page.text_of("[" + list + "].sort().join()");
}

TEST(MethodTable, ListsTheThirtyFunctionsInTheOrderOfTheApi) {
    std::vector<std::string_view> expected;
    std::vector<std::string_view> listed;
    std::ranges::transform(expected_methods(), std::back_inserter(expected), &ExpectedMethod::name);
    std::ranges::transform(kPageMethods, std::back_inserter(listed), &PageMethod::name);
    EXPECT_EQ(listed, expected);
    EXPECT_EQ(listed.size(), 30U);
}

TEST_F(ExternalObject, EnumeratesItsFunctionsOnly) {
    EXPECT_EQ(page.text_of("names = []; for (name in external) names.push(name);"
                           "names.sort().join()"),
              names_sorted_by_script(page));
    EXPECT_EQ(page.text_of("names.every(name => typeof external[name] === 'function')"), "true");
}

TEST_F(ExternalObject, IsOfTheScriptClassJSAPI) {
    EXPECT_EQ(page.text_of("Object.prototype.toString.call(external)"), "[object JSAPI]");
}

TEST_F(ExternalObject, HasReadOnlyFunctions) {
    EXPECT_EQ(page.text_of("functions = Object.getPrototypeOf(external);"
                           "Object.getOwnPropertyNames(functions).filter(name =>"
                           " !Object.getOwnPropertyDescriptor(functions, name).writable).length"),
              "30");
}

// The engine heeds read-only from a function's first use on; before that, an assignment hides it.
TEST_F(ExternalObject, KeepsItsFunctionsWhenThePageAssignsToThem) {
    EXPECT_EQ(page.text_of("used = []; for (name in external) used.push([name, external[name]]);"
                           "for ([name] of used) external[name] = 1;"
                           "used.filter(([name, kept]) => external[name] === kept).length"),
              "30");
    call("external.refresh()");
    EXPECT_EQ(host.read_frame(), frame_bytes(7, {}, {}));
}

TEST_F(ExternalObject, IsAnOrdinaryPropertyOfTheGlobalObject) {
    EXPECT_EQ(page.text_of("description = Object.getOwnPropertyDescriptor(this, 'external');"
                           "[description.writable, description.enumerable,"
                           " description.configurable].join()"),
              "true,true,true");
    EXPECT_EQ(page.text_of("external = 5; external"), "5");
    EXPECT_EQ(page.text_of("delete this.external"), "true");
    EXPECT_EQ(page.text_of("typeof external"), "undefined");
}

TEST_F(ExternalObject, IsReplacedByEveryLoad) {
    EXPECT_EQ(page.text_of("old = external; typeof old"), "object");
    KsJS_proxy::loadJSAPI(page.get(), page.global());
    EXPECT_EQ(page.text_of("old === external"), "false");
    call("old.refresh(); external.showAccounts()");
    EXPECT_EQ(host.read_frame(), frame_bytes(7, {}, {}));
    EXPECT_EQ(host.read_frame(), frame_bytes(4, {}, {}));
}

TEST_F(ExternalObject, BelongsToOnePageOnly) {
    const ScriptContext other;
    EXPECT_EQ(other.text_of("typeof external"), "undefined");
    KsJS_proxy::loadJSAPI(other.get(), other.global());
    EXPECT_EQ(page.text_of("external.mine = 1; external.mine"), "1");
    EXPECT_EQ(other.text_of("typeof external.mine"), "undefined");
}

}  // namespace
}  // namespace kestrel::testing
