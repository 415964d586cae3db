// What becomes of exceptions that script raises.
#include "tests/extension/page_glue.h"

namespace kestrel::testing {
namespace {

class ScriptException : public PageGlueWithPage {
  protected:
    void trace(const std::string& thrown) const {
        JSValueRef exception = nullptr;
        page.evaluate("throw " + thrown, exception);
        ASSERT_NE(exception, nullptr);
        KsJS_proxy::traceExceptionJS(page.get(), exception);
    }
};

TEST_F(ScriptException, NullIsIgnored) {
    KsJS_proxy::traceExceptionJS(page.get(), nullptr);
    EXPECT_EQ(errors.text(), "");
}

TEST_F(ScriptException, WithTextIsIgnored) {
    trace("new Error('text')");
    trace("'text'");
    trace("undefined");
    EXPECT_EQ(errors.text(), "");
}

TEST_F(ScriptException, WithoutTextIsReported) {
    trace("Symbol('s')");
    EXPECT_EQ(errors.text(), kBreakout);
    trace("{toString() { throw 1 }}");
    EXPECT_EQ(errors.text(), std::string(kBreakout) + kBreakout);
}

}  // namespace
}  // namespace kestrel::testing
