#include "host/session.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "host/answer.h"
#include "host/request.h"

namespace kestrel {
namespace {

constexpr std::string_view kFirstWord = "window.onHostReady && window.onHostReady();";
constexpr std::string_view kCallEverything =
    "window.callEveryFunction && window.callEveryFunction();";

}  // namespace

Session::Session(Page page, Transcript& transcript, Rehearsal* rehearsal, Events events)
    : page_(std::move(page)),
      transcript_(transcript),
      rehearsal_(rehearsal),
      events_(std::move(events)),
      state_(page_.uri) {}

void Session::offer_page() {
    phase_ = Phase::offering;
    for (Connection* connection : announced_) send_page(*connection);
}

void Session::greet_page() {
    phase_ = Phase::shown;
    for (Connection* connection : announced_) send_script(*connection, kFirstWord);
}

void Session::on_message(Connection& connection, const webkit_message& message) {
    Items items;
    const bool is_sound = decode_items(message, items);
    const Request request(std::move(items));
    if (is_sound && message.msg_type == to_host("announce")) {
        introduce(connection, request.number(0));
    }
    transcript_.message(Direction::from_page, connection.pid(), message);
    if (!is_sound) return;

    if (const Command* command = find_command(message.msg_type)) {
        carry_out(connection, *command, request);
        return;
    }
    switch (message.msg_type) {
        case to_host("announce"):
            if (phase_ == Phase::offering) send_page(connection);
            if (phase_ == Phase::shown) send_script(connection, kFirstWord);
            break;
        case to_host("resourcesTaken"):
            if (phase_ != Phase::offering || request.text(0) != page_.uri) break;
            phase_ = Phase::loading;
            events_.load_page();
            break;
        case to_host("answerDelivered"):
            if (rehearsal_ == nullptr) break;
            rehearsal_->note_answer_confirmed();
            finish_rehearsal_if_over();
            break;
        default:
            break;
    }
}

void Session::on_end(Connection& connection, std::string_view why) {
    std::erase(announced_, &connection);
    const std::string process = connection.pid() == 0 ? "?" : std::to_string(connection.pid());
    transcript_.note("connection of " + process + ": " + std::string(why));
}

void Session::introduce(Connection& connection, int pid) {
    connection.set_pid(pid);
    if (std::ranges::find(announced_, &connection) == announced_.end()) {
        announced_.push_back(&connection);
    }
}

void Session::carry_out(Connection& connection, const Command& command, const Request& request) {
    if (command.answerer != nullptr) {
        const std::optional<Answer> answer = command.answerer(state_, request);
        if (answer) send_answer(connection, *answer);
    }
    if (rehearsal_ != nullptr) rehearse(connection, command, request);
}

void Session::rehearse(Connection& connection, const Command& command, const Request& request) {
    if (rehearsal_->has_begun()) {
        rehearsal_->note_command(command);
        if (command.code == to_host("writeTraceMessage")) rehearsal_->take_report(request.text(0));
        finish_rehearsal_if_over();
    } else if (command.code == to_host("ready")) {
        rehearsal_->begin();
        send_script(connection, kCallEverything);
    }
}

void Session::finish_rehearsal_if_over() {
    if (rehearsal_->is_over()) events_.rehearsal_over();
}

void Session::send(Connection& connection, Frame frame) {
    if (!frame) return;
    transcript_.message(Direction::to_page, connection.pid(), *frame);
    connection.send(std::move(frame));
}

void Session::send_page(Connection& connection) {
    send(connection, build_frame(to_page("resourcesAndUrl"), {},
                                 std::array<std::string_view, 2>{page_.uri, page_.resources}));
}

void Session::send_script(Connection& connection, std::string_view script) {
    send(connection, build_frame(to_page("script"), {}, std::array{script}));
}

void Session::send_answer(Connection& connection, const Answer& answer) {
    Frame frame = answer_frame(answer);
    if (!frame) {
        transcript_.note("an answer is too long for the page, not sent");
        return;
    }
    if (rehearsal_ != nullptr) rehearsal_->note_answer_sent();
    send(connection, std::move(frame));
}

}  // namespace kestrel
