#include "workbench/answers/script_literal.h"

#include <gmock/gmock.h>

#include "tests/support/script_context.h"

namespace kestrel::testing {
namespace {

TEST(ScriptLiteral, EscapesDelimitersControlCharactersAndLineSeparators) {
    EXPECT_EQ(script_literal(""), R"("")");
    EXPECT_EQ(script_literal(R"(a"b\c)"), R"("a\"b\\c")");
    EXPECT_EQ(script_literal("\n\t\x01\x1f"), R"("\n\t\u0001\u001f")");
    EXPECT_EQ(script_literal("</script>"), R"("<\/script>")");
    EXPECT_EQ(script_literal("a<b/c"), R"("a<b/c")");
    EXPECT_EQ(script_literal("\xe2\x80\xa8|\xe2\x80\xa9"), R"("\u2028|\u2029")");
}

TEST(ScriptLiteral, KeepsOtherCharactersAndReplacesInvalidUtf8) {
    EXPECT_EQ(script_literal("\xc3\xbc\xf0\x9f\x98\x80\xe2\x80\xaa"),
              "\"\xc3\xbc\xf0\x9f\x98\x80\xe2\x80\xaa\"");
    EXPECT_EQ(script_literal("a\xff|\xe2\x80"), "\"a\xef\xbf\xbd|\xef\xbf\xbd\"");
}

TEST(ScriptLiteral, EvaluatesToItsText) {
    const ScriptContext page;
    for (const std::string& text :
         {std::string("\"); throw 1; (\""), std::string("\\\n\r</script><!--"),
          std::string("\xe2\x80\xa8\xe2\x80\xa9\xf0\x9f\x98\x80"), std::string("${a}`'")}) {
        EXPECT_EQ(page.text_of(script_literal(text)), text);
        EXPECT_EQ(page.text_of("JSON.parse(" + script_literal(script_literal(text)) + ")"), text);
    }
}

TEST(ScriptLiteral, SerialisesListsAndObjectsInOrder) {
    EXPECT_EQ(script_literal(ScriptValue::array()), "[]");
    EXPECT_EQ(script_literal({"a", true}), R"(["a",true])");
    EXPECT_EQ(script_literal(ScriptValue::object()), "{}");
    EXPECT_EQ(script_literal({{"b\"</", ScriptValue::array()}, {"a", false}}),
              R"({"b\"<\/":[],"a":false})");
}

}  // namespace
}  // namespace kestrel::testing
