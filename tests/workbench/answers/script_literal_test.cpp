#include "workbench/answers/script_literal.h"

#include <gmock/gmock.h>

#include <array>

#include "tests/support/script_context.h"

namespace kestrel::testing {
namespace {

TEST(ScriptString, EscapesWhatWouldEndItOrItsScript) {
    EXPECT_EQ(script_string(""), R"("")");
    EXPECT_EQ(script_string(R"(a"b\c)"), R"("a\"b\\c")");
    EXPECT_EQ(script_string("\n\t\x01\x1f\x7f"), R"("\u000a\u0009\u0001\u001f\u007f")");
    EXPECT_EQ(script_string("</script>"), R"("<\/script>")");
    EXPECT_EQ(script_string("a<b/c"), R"("a<b/c")");
    EXPECT_EQ(script_string("\xe2\x80\xa8|\xe2\x80\xa9"), R"("\u2028|\u2029")");
}

TEST(ScriptString, KeepsOtherCharactersAndRepairsWhatIsNone) {
    EXPECT_EQ(script_string("\xc3\xbc\xf0\x9f\x98\x80\xe2\x80\xaa"),
              "\"\xc3\xbc\xf0\x9f\x98\x80\xe2\x80\xaa\"");
    EXPECT_EQ(script_string("a\xff|\xe2\x80"), "\"a\xef\xbf\xbd|\xef\xbf\xbd\xef\xbf\xbd\"");
    EXPECT_EQ(script_string({}), R"("")");
}

TEST(ScriptString, HasItsTextAsValueInScript) {
    const ScriptContext page;
    for (const std::string& text :
         {std::string("\"); throw 1; (\""), std::string("\\\n\r</script><!--"),
          std::string("\xe2\x80\xa8\xe2\x80\xa9\xf0\x9f\x98\x80"), std::string("${a}`'")}) {
        EXPECT_EQ(page.text_of(script_string(text)), text);
        EXPECT_EQ(page.text_of("JSON.parse(" + script_string(script_string(text)) + ")"), text);
    }
}

TEST(ScriptLiterals, AreComposed) {
    EXPECT_EQ(script_array({}), "[]");
    EXPECT_EQ(script_array(std::array{script_string("a"), script_boolean(true)}), R"(["a",true])");
    EXPECT_EQ(script_object({}), "{}");
    EXPECT_EQ(script_object({{"a", script_boolean(false)}, {"b\"", script_array({})}}),
              R"({"a":false,"b\"":[]})");
}

}  // namespace
}  // namespace kestrel::testing
