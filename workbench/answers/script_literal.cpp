#include "workbench/answers/script_literal.h"

#include <glib.h>

#include <array>
#include <cstdio>
#include <vector>

#include "workbench/desktop/glib_handles.h"

namespace kestrel {
namespace {

std::string unicode_escape(unsigned code_unit) {
    std::array<char, 7> text;
    std::snprintf(text.data(), text.size(), "\\u%04x", code_unit);
    return text.data();
}

// The UTF-8 of U+2028 and U+2029, which once ended lines within script strings.
constexpr std::string_view kLineSeparator = "\xe2\x80\xa8";
constexpr std::string_view kParagraphSeparator = "\xe2\x80\xa9";

// Appends the next character, or escape, of `rest` to `literal`; gives the bytes that it took.
std::size_t append_next(std::string_view rest, std::string& literal) {
    if (rest.starts_with("</")) {
        literal += "<\\/";
        return 2;
    }
    if (rest.starts_with(kLineSeparator) || rest.starts_with(kParagraphSeparator)) {
        literal += rest.starts_with(kLineSeparator) ? "\\u2028" : "\\u2029";
        return kLineSeparator.size();
    }
    const char first = rest.front();
    if (first == '"' || first == '\\') {
        literal += '\\';
        literal += first;
    } else if (static_cast<unsigned char>(first) < 0x20 || first == 0x7f) {
        literal += unicode_escape(static_cast<unsigned char>(first));
    } else {
        literal += first;
    }
    return 1;
}

std::string enclosed(char open, const std::string& list, char close) { return open + list + close; }

}  // namespace

std::string script_string(std::string_view text) {
    const GlibText valid(
        g_utf8_make_valid(text.empty() ? "" : text.data(), static_cast<gssize>(text.size())));
    std::string literal = "\"";
    for (std::string_view rest = valid.get(); !rest.empty();) {
        rest.remove_prefix(append_next(rest, literal));
    }
    return literal += '"';
}

std::string script_array(std::span<const std::string> elements) {
    std::string list;
    for (const std::string& element : elements) {
        if (!list.empty()) list += ',';
        list += element;
    }
    return enclosed('[', list, ']');
}

std::string script_strings(std::span<const std::string> texts) {
    std::vector<std::string> literals;
    literals.reserve(texts.size());
    for (const std::string& text : texts) literals.push_back(script_string(text));
    return script_array(literals);
}

std::string script_object(std::initializer_list<std::pair<std::string_view, std::string>> members) {
    std::string list;
    for (const auto& [name, value] : members) {
        if (!list.empty()) list += ',';
        list += script_string(name) + ':' + value;
    }
    return enclosed('{', list, '}');
}

}  // namespace kestrel
