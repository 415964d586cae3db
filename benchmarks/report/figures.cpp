#include "benchmarks/report/figures.h"

namespace kestrel::bench {
namespace {

constexpr std::string_view kTexts = "JavaScriptCore's texts, one write";
constexpr std::string_view kConvert = "JSStringGetUTF8CString, one write";
constexpr std::string_view kPost = "messageHandlers.post.postMessage";
constexpr std::string_view kReply = "faster of WebKit's messages with reply";
constexpr std::string_view kEvaluate = "webkit_web_view_evaluate_javascript";
constexpr std::string_view kEmptyCall = "empty function of another library";
constexpr std::string_view kBareWrite = "one bare write";

using enum Unit;
constexpr std::nullopt_t none = std::nullopt;

// clang-format off
constexpr auto kFigures = std::to_array<Figure>({
    {"page call, three short strings",     "page_call_1B",               kTexts,   {"page_texts_1B"},               1.15},
    {"page call, 16 B",                    "page_call_16B",              kPost,    {"page_post_16B"},               0.1},
    {"page call, 4 KB",                    "page_call_4KB",              kPost,    {"page_post_4KB"},               0.25},
    {"page call, 1 MB",                    "page_call_1MB",              kPost,    {"page_post_1MB"},               1.1},
    {"page call, 1 MB",                    "page_call_1MB",              kTexts,   {"page_texts_1MB"},              none},
    {"page call, 1 MB of Latin-1",         "page_call_1MB_latin1",       kConvert, {"page_convert_1MB_latin1"},     1.0},
    {"page call, 1 MB of Cyrillic",        "page_call_1MB_cyrillic",     kConvert, {"page_convert_1MB_cyrillic"},   1.0},
    {"burst of 100,000 calls, each",       "burst_calls",                kTexts,   {"burst_texts"},                 1.2},
    {"round trip, 16 B",                   "trip_link_16B",              kReply,   {"trip_script_16B", "trip_view_16B"}, 0.5},
    {"round trip, 4 KB",                   "trip_link_4KB",              kReply,   {"trip_script_4KB", "trip_view_4KB"}, 0.5},
    {"round trip, 1 MB",                   "trip_link_1MB",              kReply,   {"trip_script_1MB", "trip_view_1MB"}, 0.5},
    {"answers in a row, each",             "answers",                    kEvaluate, {"evaluate_javascript"},        0.4},
    {"script on a busy page, sent to effect", "script_busy",             "",       {},                              50e6},
    {"the same",                           "script_busy",                "the same script on a quiet page", {"script_quiet"}, none},
    {"the same, longest of all",           "script_busy_longest",        "",       {},                              500e6},
    {"inbound, six short strings",         "inbound_short",              "two bare reads",         {"two_bare_reads"},   1.6},
    {"inbound, 4.9 MB",                    "inbound_large",              "bare socket to buffer",  {"bare_large"},       1.6},
    {"wrapMessage, three short strings",   "wrap_message",               "malloc and memcpy",      {"malloc_and_memcpy"}, 3.0},
    {"suppressed log line",                "suppressed_line",            kEmptyCall, {"empty_function_call"},       3.0},
    {"suppressed log line, slowest lookup", "suppressed_line_of_a_group", kEmptyCall, {"empty_function_call"},      3.0},
    {"emitted log line",                   "emitted_line",               kBareWrite, {"bare_write"},                1.6},
    {"emitted log line",                   "emitted_line",               "syslog(3)",              {"syslog_line"},      1.0},
    {"emitted log line",                   "emitted_line",               "spdlog's syslog sink",   {"spdlog_line"},      1.0},
    {"loading the library",                "load_library",               "empty library",          {"load_empty_library"}, none},
    {"relocations",                        "relocations",                "",                       {},                   none, number},
    {"constructors",                       "constructors",               "",                       {},                   none, number},
    {"attaching to a page",                "attachment",                 "",                       {},                   none},
    {"memory growth by 10,000 attachments", "attachments_bytes",         "",                       {},                   512.0 * 1024, bytes},
    {"memory added by the extension",      "private_bytes",              "",                       {},                   512.0 * 1024, bytes},
    {"calls queued while the host pauses", "paused_calls",               "",                       {},                   none, number},
    {"of these, lost or out of order",     "paused_lost",                "",                       {},                   0.0, number},
});
// clang-format on

std::optional<double> value_of(const Measurements& measurements, std::string_view name) {
    const auto found = measurements.find(name);
    return found == measurements.end() ? std::nullopt : std::optional<double>(found->get<double>());
}

std::optional<double> floor_of(const Measurements& measurements, const Figure& figure) {
    std::optional<double> smallest;
    for (const std::string_view name : figure.floors) {
        const auto value = name.empty() ? std::nullopt : value_of(measurements, name);
        if (value && (!smallest || *value < *smallest)) smallest = value;
    }
    return smallest;
}

Judged judge(const Figure& figure, const Measurements& measurements) {
    Judged judged{&figure, value_of(measurements, figure.measurement),
                  floor_of(measurements, figure), std::nullopt, false};
    const bool has_floor = !figure.floors[0].empty();
    if (judged.value && judged.floor) judged.ratio = *judged.value / *judged.floor;
    const std::optional<double> compared = has_floor ? judged.ratio : judged.value;
    judged.missed = !compared || (figure.target && *compared > *figure.target);
    return judged;
}

}  // namespace

std::string_view Judged::verdict() const {
    if (!value) return "not measured";
    if (missed) return "MISSED";
    return figure->target ? "good" : "reported";
}

std::vector<Judged> judge(const Measurements& measurements) {
    std::vector<Judged> all;
    for (const Figure& figure : kFigures) all.push_back(judge(figure, measurements));
    return all;
}

}  // namespace kestrel::bench
