// What holds for every function of `external`.
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tests/jsapi/expected_methods.h"
#include "tests/jsapi/page_api.h"

namespace kestrel::testing {
namespace {

constexpr std::size_t kMostArguments = 8;
constexpr const char* kLinkDown = "webkit_client::sendMessage server_fd not initialized yet\n";

std::string call_of(const ExpectedMethod& method) {
    return "external." + std::string(method.name) + "(" + std::string(method.arguments) + ")";
}

// A call with so many arguments, none of which may be looked at.
std::string call_of(const ExpectedMethod& method, std::size_t count) {
    return R"(
        was_touched = false;
        touched = () => { was_touched = true; throw new Error('touched') };
        argument = {toString: touched, valueOf: touched, [Symbol.toPrimitive]: touched};
        external.)" +
           std::string(method.name) + "(...Array(" + std::to_string(count) + ").fill(argument))";
}

std::string refusal(const ExpectedMethod& method, std::size_t count) {
    std::string line(method.refusal);
    return line.replace(line.find('#'), 1, std::to_string(count));
}

std::vector<ExpectedMethod> methods(bool counted) {
    std::vector<ExpectedMethod> chosen;
    std::ranges::copy_if(expected_methods(), std::back_inserter(chosen),
                         [&](const auto& method) { return method.count.has_value() == counted; });
    return chosen;
}

class EachMethod : public PageApiWithHost, public ::testing::WithParamInterface<ExpectedMethod> {};

TEST_P(EachMethod, SendsItsMessage) {
    call(call_of(GetParam()));
    EXPECT_EQ(host.read_frame(), GetParam().frame);
    EXPECT_TRUE(host.is_quiet());
    EXPECT_EQ(errors.text(), "");
}

TEST_P(EachMethod, NeedsNoThisObject) {
    call("method = external." + std::string(GetParam().name) + "; method(" +
         std::string(GetParam().arguments) + ")");
    EXPECT_EQ(host.read_frame(), GetParam().frame);
}

TEST_P(EachMethod, SendsTheSameWhenItsMemberIsCalledByName) {
    JSValueRef thrown = nullptr;
    const std::string list = "[" + std::string(GetParam().arguments) + "]";
    const auto array = JSValueToObject(page.get(), page.evaluate(list, thrown), nullptr);
    std::vector<JSValueRef> arguments;
    for (unsigned i = 0; i < std::stoul(page.text_of(list + ".length")); ++i) {
        arguments.push_back(JSObjectGetPropertyAtIndex(page.get(), array, i, nullptr));
    }

    const JSValueRef untouched = JSValueMakeNumber(page.get(), 1);
    JSValueRef exception = untouched;
    const JSValueRef result = GetParam().member(page.get(), nullptr, nullptr, arguments.size(),
                                                arguments.data(), &exception);

    EXPECT_TRUE(JSValueIsUndefined(page.get(), result));
    EXPECT_EQ(exception, untouched);
    EXPECT_EQ(host.read_frame(), GetParam().frame);
    EXPECT_TRUE(host.is_quiet());
}

INSTANTIATE_TEST_SUITE_P(External, EachMethod, ::testing::ValuesIn(expected_methods()));

class EachCountedMethod : public EachMethod {};

TEST_P(EachCountedMethod, RefusesAnyOtherCount) {
    std::string lines;
    for (std::size_t count = 0; count <= kMostArguments; ++count) {
        if (count == GetParam().count) continue;
        call(call_of(GetParam(), count));
        lines += refusal(GetParam(), count);
        EXPECT_EQ(errors.text(), lines);
        EXPECT_EQ(page.text_of("was_touched"), "false");
    }
    EXPECT_TRUE(host.is_quiet());
}

INSTANTIATE_TEST_SUITE_P(External, EachCountedMethod, ::testing::ValuesIn(methods(true)));

class EachUncountedMethod : public EachMethod {};

TEST_P(EachUncountedMethod, IgnoresItsArguments) {
    for (std::size_t count = 0; count <= kMostArguments; ++count) {
        call(call_of(GetParam(), count));
        EXPECT_EQ(host.read_frame(), GetParam().frame) << count;
        EXPECT_EQ(page.text_of("was_touched"), "false");
    }
    EXPECT_TRUE(host.is_quiet());
    EXPECT_EQ(errors.text(), "");
}

INSTANTIATE_TEST_SUITE_P(External, EachUncountedMethod, ::testing::ValuesIn(methods(false)));

class EachMethodWithoutLink : public PageApi,
                              public ::testing::WithParamInterface<ExpectedMethod> {};

TEST_P(EachMethodWithoutLink, ReportsTheMissingLink) {
    call(call_of(GetParam()));
    EXPECT_EQ(errors.text(), kLinkDown);
}

INSTANTIATE_TEST_SUITE_P(External, EachMethodWithoutLink, ::testing::ValuesIn(expected_methods()));

}  // namespace
}  // namespace kestrel::testing
