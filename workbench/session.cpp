#include "workbench/session.h"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <utility>

#include "ipc/frame_builder.h"
#include "ipc/items.h"
#include "workbench/answers/answer.h"
#include "workbench/answers/request.h"

namespace kestrel {
namespace {

constexpr std::string_view kHostReadyScript = "window.onHostReady && window.onHostReady();";

}  // namespace

Session::Session(Services& services, std::string resources, Transcript& transcript,
                 PageCheck* check, Events events)
    : services_(services),
      resources_(std::move(resources)),
      transcript_(transcript),
      check_(check),
      events_(std::move(events)) {}

void Session::offer_page() {
    phase_ = Phase::offering;
    for (Connection* connection : announced_) send_page(*connection);
}

void Session::notify_ready() {
    phase_ = Phase::shown;
    for (Connection* connection : announced_) send_ready(*connection);
}

void Session::on_message(Connection& connection, const webkit_message& message) {
    Items items;
    const bool is_sound = decode_items(message, items);
    const Request request(std::move(items));
    if (is_sound && message.msg_type == to_host("announce")) {
        on_announce(connection, request.number(0));
    }
    const std::uint64_t serial =
        transcript_.message(Direction::from_page, connection.pid(), message);
    if (!is_sound) return;

    if (const Command* command = find_command(message.msg_type)) {
        dispatch(connection, *command, request, serial);
        return;
    }
    switch (message.msg_type) {
        case to_host("announce"):
            if (phase_ == Phase::offering) send_page(connection);
            if (phase_ == Phase::shown) send_ready(connection);
            break;
        case to_host("resourcesTaken"):
            if (phase_ != Phase::offering || request.text(0) != services_.page_uri) break;
            phase_ = Phase::loading;
            events_.load_page();
            break;
        case to_host("answerDelivered"):
            if (check_ != nullptr) check_->on_answer_confirmed();
            report_check_over();
            break;
        default:
            break;
    }
}

void Session::on_end(Connection& connection, std::string_view why) {
    const bool was_announced = std::erase(announced_, &connection) > 0;
    const std::string process = connection.pid() == 0 ? "?" : std::to_string(connection.pid());
    transcript_.note("connection of " + process + ": " + std::string(why));
    if (was_announced) events_.processes_changed();
}

std::vector<int> Session::processes() const {
    std::vector<int> pids;
    for (const Connection* connection : announced_) pids.push_back(connection->pid());
    return pids;
}

void Session::send_to(int pid, const webkit_message& message) {
    for (Connection* connection : announced_) {
        if (pid == 0 || connection->pid() == pid) send(*connection, copy_of(message));
    }
}

void Session::misbehave_now(Misbehavior kind) {
    transcript_.note("bad host: " + std::string(name_of(kind)) + ", now");
    for (Connection* connection : announced_) {
        send(*connection, misbehave(kind, answer_frame({"(() => {})", {}})), 0);
    }
}

void Session::on_announce(Connection& connection, int pid) {
    connection.set_pid(pid);
    if (std::ranges::find(announced_, &connection) == announced_.end()) {
        announced_.push_back(&connection);
    }
    events_.processes_changed();
}

void Session::dispatch(Connection& connection, const Command& command, const Request& request,
                       std::uint64_t serial) {
    if (command.action != nullptr) run_action(connection, command, request, serial);
    if (check_ == nullptr) return;
    send_script(connection, check_->on_command(command, request));
    report_check_over();
}

void Session::run_action(Connection& connection, const Command& command, const Request& request,
                         std::uint64_t serial) {
    const std::string callback =
        command.calls_back() ? request.text(static_cast<std::size_t>(command.callback)) : "";
    const Reply reply(
        callback, [this, &connection, serial, alive = connection.lifetime()](const Answer& answer) {
            return alive.expired() || send_answer(connection, answer, serial);
        });
    try {
        command.action(services_, request, reply);
    } catch (const std::exception& error) {
        services_.user_interface.show_notice(std::string(command.name) + ": " + error.what());
        reply(nullptr);
    }
}

void Session::report_check_over() {
    if (check_ != nullptr && check_->is_over()) events_.check_over();
}

void Session::send(Connection& connection, Frame frame) {
    send(connection, misbehave(Misbehavior::none, std::move(frame)), 0);
}

void Session::send(Connection& connection, Outgoing outgoing, std::uint64_t answer_to) {
    if (outgoing.delay.count() > 0) {
        const auto delay = std::exchange(outgoing.delay, std::chrono::seconds(0));
        EventSource::call_after(delay, [this, &connection, answer_to, alive = connection.lifetime(),
                                        late = std::make_shared<Outgoing>(std::move(outgoing))] {
            if (!alive.expired()) send(connection, std::move(*late), answer_to);
        });
        return;
    }
    if (outgoing.frame) {
        transcript_.message(Direction::to_page, connection.pid(), *outgoing.frame, answer_to);
    }
    if (outgoing.falls_silent) {
        connection.send_beginning(std::move(outgoing.frame), outgoing.size);
    } else {
        connection.send(std::move(outgoing.frame));
    }
    if (outgoing.hangs_up) connection.hang_up();
}

void Session::send_page(Connection& connection) {
    send(connection, build_frame(to_page("resourcesAndUrl"), {},
                                 std::array<std::string_view, 2>{services_.page_uri, resources_}));
}

void Session::send_ready(Connection& connection) {
    send_script(connection, kHostReadyScript);
    if (check_ != nullptr) send_script(connection, check_->on_page_shown());
}

void Session::send_script(Connection& connection, std::string_view script) {
    if (!script.empty()) send(connection, build_frame(to_page("script"), {}, std::array{script}));
}

bool Session::send_answer(Connection& connection, const Answer& answer, std::uint64_t request) {
    Frame frame = answer_frame(answer);
    if (!frame) {
        transcript_.note("an answer is too long for the page, not sent");
        return false;
    }
    if (check_ != nullptr) check_->on_answer_sent();
    if (misbehavior_ != Misbehavior::none) {
        transcript_.note("bad host: " + std::string(name_of(misbehavior_)));
    }
    send(connection, misbehave(misbehavior_, std::move(frame)), request);
    return true;
}

}  // namespace kestrel
