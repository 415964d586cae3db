#include "workbench/check/script_check.h"

#include <jsc/jsc.h>
#include <nlohmann/json.hpp>

#include <utility>

#include "workbench/desktop/glib_handles.h"

namespace kestrel {
namespace {

// No newline before the script, so that error messages have its line numbers.
constexpr const char* kScriptStart = "(async (workbench) => {";
constexpr const char* kScriptEnd = "\n})";

// Each report is a trace message. `page` is the function made of the script.
constexpr const char* kRunner = R"js(
(async (page) => {
  const report = (result) =>
      external.writeTraceMessage(JSON.stringify({workbench: result}), '', '', '');
  const expect = (held, text) => report({held: Boolean(held), text: String(text)});
  const until = async (condition, text, milliseconds = 5000) => {
    const end = performance.now() + milliseconds;
    let value = await condition();
    while (!value && performance.now() < end) {
      await new Promise((resolve) => setTimeout(resolve, 20));
      value = await condition();
    }
    expect(value, text);
    return value;
  };
  try {
    await page({expect, until});
  } catch (error) {
    expect(false, `the script ends without an error: ${error}`);
  }
  report({over: true});
})
)js";

std::string as_function(const std::string& source) { return kScriptStart + source + kScriptEnd; }

}  // namespace

std::string ScriptCheck::find_syntax_error(const std::string& source) {
    const ObjectHandle<JSCContext> context(jsc_context_new());
    const std::string script = as_function(source);
    JSCException* exception = nullptr;
    jsc_context_check_syntax(context.get(), script.data(), static_cast<gssize>(script.size()),
                             JSC_CHECK_SYNTAX_MODE_SCRIPT, nullptr, 1, &exception);
    if (exception == nullptr) return "";
    const ObjectHandle<JSCException> owned(exception);
    return "line " + std::to_string(jsc_exception_get_line_number(exception)) + ": " +
           jsc_exception_get_message(exception);
}

std::string ScriptCheck::on_page_shown() {
    // The page, or the script itself, may have reloaded the page.
    if (std::exchange(has_begun_, true)) return "";
    return kRunner + ("(" + as_function(source_) + ");");
}

std::string ScriptCheck::on_command(const Command& command, const Request& request) {
    if (command.code != to_host("writeTraceMessage")) return "";
    const auto trace = nlohmann::json::parse(request.text(0), nullptr, /*allow_exceptions=*/false);
    if (!trace.is_object()) return "";
    const nlohmann::json result = trace.value("workbench", nlohmann::json());
    if (!result.is_object()) return "";

    if (result.contains("over")) {
        is_over_ = true;
    } else if (result.value("held", nlohmann::json()) == true) {
        ++held_;
    } else {
        const nlohmann::json text = result.value("text", nlohmann::json());
        failures_.push_back(text.is_string() ? text.get<std::string>() : text.dump());
    }
    return "";
}

std::vector<std::string> ScriptCheck::failures() const {
    std::vector<std::string> lines = failures_;
    if (!is_over_) {
        lines.emplace_back(has_begun_ ? "the script has not come to its end"
                                      : "the page was never shown");
    }
    return lines;
}

std::string ScriptCheck::success() const {
    return "all expectations held: " + std::to_string(held_);
}

}  // namespace kestrel
