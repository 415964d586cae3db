// Compares the messages of the sample store calling every function with the transcript in this
// directory. After an intended change, copy the new transcript, as the failure message says.
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>

#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/store/store_file.h"
#include "tests/workbench/workbench_process.h"
#include "workbench/desktop/glib_handles.h"
#include "workbench/desktop/user_interface.h"

namespace kestrel::testing {
namespace {

using Json = nlohmann::json;

constexpr const char* kKept = TRANSCRIPT_KEPT;
constexpr const char* kNew = TRANSCRIPT_NEW;

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// Removes the text between the first occurrences of these two.
std::string without(std::string text, const std::string& start, const std::string& end) {
    const std::size_t found = text.find(start);
    if (found == std::string::npos) return text;
    const std::size_t from = found + start.size();
    return text.erase(from, text.find(end, from) - from);
}

// Replaces what differs between computers.
std::string normalised(std::string text) {
    const Account account = local_account();
    text =
        replaced(text, GlibText(g_filename_to_uri(STORE, nullptr, nullptr)).get(), "file:///store");
    text = replaced(text, R"("version":")" WORKBENCH_VERSION "\"", R"("version":"0")");
    text = replaced(text, R"("user":")" + account.user + "\"", R"("user":"robin")");
    text = replaced(text, "\"" + account.name + "\"", R"("Robin Example")");

    text = without(text, R"("applications":[)", R"(],"subscriptions")");
    text = without(text, "data:image/png;base64,", "\"");
    return text.starts_with("Could not connect") ? "Could not connect" : text;
}

std::string normalised_line(const std::string& line) {
    Json message = Json::parse(line);
    for (const char* member : {"time", "pid", "length"}) message.erase(member);
    if (message["name"] == "announce") message.erase("ints");
    for (Json& text : message["strings"]) {
        if (text.is_string()) text = normalised(text.get<std::string>());
    }
    return message.dump() + "\n";
}

// The messages of a transcript, without notes.
std::string messages_of(const std::string& path) {
    std::ifstream file(path);
    std::string messages;
    for (std::string line; std::getline(file, line);) {
        if (Json::parse(line).contains("direction")) messages += normalised_line(line);
    }
    return messages;
}

TEST(Functions, MatchTheStoredTranscript) {
    const TemporaryDirectory files;
    const std::string transcript = files.path() + "/transcript";
    WorkbenchProcess program(
        {"--headless", "--auto", "--page", store_file("index.html"), "--resources",
         store_file("resources.json"), "--transcript", transcript},
        files.path(), files.path());
    ASSERT_EQ(program.wait_for_end(), 0) << program.output();

    const std::string messages = messages_of(transcript);
    std::ofstream(kNew) << messages;
    EXPECT_EQ(messages, file_content(kKept)) << "to keep the new one: cp " << kNew << " " << kKept;
}

}  // namespace
}  // namespace kestrel::testing
