// The workbench's answers to a page. The first byte selects how the user and the machine respond,
// and a string their text. Then each request takes one byte for its type, one for the number of
// integers, one for the number of strings, and the items, each up to a NUL.
#include <JavaScriptCore/JavaScript.h>
#include <glib.h>
#include <nlohmann/json.hpp>
#include <sys/socket.h>

#include <array>
#include <cstring>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "ipc/items.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/fake_machine.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/quiet.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/desktop/fake_user_interface.h"
#include "workbench/answers/commands.h"
#include "workbench/session.h"

namespace {

using kestrel::fuzz::check;

// One request as received, with any content.
kestrel::Frame next_request(kestrel::fuzz::Input& input) {
    std::array<int, 4> header{};
    for (std::size_t field = 0; field < 3; ++field) header[field] = static_cast<int>(input.byte());
    header[1] %= 6;
    header[2] %= 8;
    std::string payload;
    for (int item = 0; item < header[1] + header[2]; ++item) payload += input.text() + '\0';
    header[3] = static_cast<int>(payload.size());
    std::string bytes(sizeof header, '\0');
    std::memcpy(bytes.data(), header.data(), sizeof header);
    bytes += payload;
    std::span<const char> rest(bytes);
    return kestrel::FrameAssembler(kestrel::kLimitsFromPage).next(rest);
}

// The callback of a request, which is script of the page; all other items are data.
std::string callback_of(const webkit_message& request) {
    const kestrel::Command* const command = kestrel::find_command(request.msg_type);
    kestrel::Items items;
    if (command == nullptr || !command->calls_back() || !decode_items(request, items)) return "";
    const auto index = static_cast<std::size_t>(command->callback);
    return index < items.strings.size() ? items.strings[index] : "";
}

// Uses a new context, which is slow, because the leak sanitizer does not find pointers of a live
// one.
void check_syntax(const std::string& script) {
    JSGlobalContextRef const context = JSGlobalContextCreate(nullptr);
    JSStringRef const text = JSStringCreateWithUTF8CString(script.c_str());
    check(JSCheckScriptSyntax(context, text, nullptr, 1, nullptr));
    JSStringRelease(text);
    JSGlobalContextRelease(context);
}

// An answer calls the page's callback with JSON literals: text of the page or the web must only
// occur within strings. Returns the script with a callback of ours.
std::string check_answer(const webkit_message& frame, const std::string& callback) {
    check(frame.msg_type == kestrel::to_page("answer"));
    check(frame.total_len_of_string <= kestrel::kMaxInboundPayload);
    kestrel::Items items;
    check(kestrel::decode_items(frame, items) && items.ints.empty() && !callback.empty());
    const std::string& script = items.strings.at(0);
    if (items.strings.size() > 1) {
        check(items.strings.size() == 6 && script == callback);
        check(callback.find(kestrel::kAjaxCompletion) != std::string::npos);
        return "";
    }
    const std::string before = "(() => (" + callback + "\n)(";
    constexpr std::string_view kAfter = "))";
    check(script.starts_with(before) && script.ends_with(kAfter) &&
          script.size() >= before.size() + kAfter.size());
    const std::string values =
        script.substr(before.size(), script.size() - before.size() - kAfter.size());
    check(nlohmann::json::accept("[" + values + "]"));
    for (const std::string_view unsafe : {"</", "\u2028", "\u2029"}) {
        check(values.find(unsafe) == std::string::npos);
    }
    return "((() => (take\n)(" + values + ")));\n";
}

// A host with one web process and a new directory for its page.
class Host {
  public:
    explicit Host(bool user_agrees) {
        user_interface_.agrees = user_agrees;
        std::array<int, 2> ends{};
        check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0);
        web_process_ = kestrel::FileDescriptor(ends[1]);
        connection_.emplace(kestrel::FileDescriptor(ends[0]), session_);
    }

    // Performs the request; returns the answer, if there is one.
    kestrel::Frame answer_to(const webkit_message& request) {
        session_.on_message(*connection_, request);
        kestrel::FrameAssembler assembler({kestrel::kMaxInboundPayload, 6});
        kestrel::Frame answer;
        std::array<char, 65'536> piece;
        for (bool is_busy = true; is_busy;) {
            is_busy = g_main_context_iteration(nullptr, FALSE) != FALSE;
            const ssize_t got = recv(web_process_.get(), piece.data(), piece.size(), MSG_DONTWAIT);
            if (got <= 0) continue;
            is_busy = true;
            std::span<const char> bytes(piece.data(), static_cast<std::size_t>(got));
            while (kestrel::Frame frame = assembler.next(bytes)) {
                check(answer == nullptr);  // one request, one answer
                answer = std::move(frame);
            }
            check(assembler.fault().empty());
        }
        check(!assembler.is_inside_frame());
        return answer;
    }

  private:
    static const std::string& directory() {
        static const kestrel::testing::TemporaryDirectory directory;
        return directory.path();
    }

    kestrel::StoreDatabase database_{":memory:"};
    kestrel::InstalledApps apps_{directory()};
    kestrel::WebRequests requests_;
    kestrel::testing::FakeUserInterface user_interface_;
    kestrel::Services services_{"file://" + directory() + "/page.html",
                                database_,
                                apps_,
                                requests_,
                                user_interface_,
                                [](const std::string& icon) { return "data:," + icon; }};
    std::ostringstream lines_;
    kestrel::Transcript transcript_{lines_};
    kestrel::Session session_{
        services_, "", transcript_, nullptr, {.load_page = [] {}, .check_over = [] {}}};
    kestrel::FileDescriptor web_process_;
    std::optional<kestrel::Connection> connection_;
};

void keep_to_this_process() {
    kestrel::fuzz::silence_error_lines();
    static const bool is_set = g_setenv("GIO_USE_VFS", "local", TRUE) != FALSE;
    check(is_set);
}

}  // namespace

// Every request with a callback has one answer, other requests have none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    keep_to_this_process();
    kestrel::fuzz::Input input(data, size);
    const std::size_t choice = input.byte();
    kestrel::fuzz::fake_machine() = {.text = input.text(), .succeeds = (choice & 1U) != 0};
    Host host((choice & 2U) != 0);
    std::string scripts;
    for (int requests = 0; requests < 20 && !input.is_empty(); ++requests) {
        const kestrel::Frame request = next_request(input);
        if (request == nullptr) continue;
        const std::string callback = callback_of(*request);
        const kestrel::Frame answer = host.answer_to(*request);
        check((answer != nullptr) == !callback.empty());
        if (answer) scripts += check_answer(*answer, callback);
    }
    if (!scripts.empty()) check_syntax(scripts);
    return 0;
}
