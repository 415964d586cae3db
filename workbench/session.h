// The conversation with the web processes of one window.
//
// The window first shows an empty page, so that a web process starts. As soon as that page is shown
// and the process has announced itself, it is handed the store page's URL and resources; the store
// page is loaded when the process says that it has taken them. When the page has loaded, it gets
// the host's first word, and only then does it call the host: before that, its link need not be up.
//
// WebKit may move the page to a second process at any time, so everything is said to every process
// that has announced itself.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "workbench/answers/answer.h"
#include "workbench/answers/request.h"
#include "workbench/answers/services.h"
#include "workbench/check/page_check.h"
#include "workbench/wire/connection.h"
#include "workbench/wire/misbehavior.h"
#include "workbench/wire/transcript.h"

namespace kestrel {

class Session final : public MessageReceiver {
  public:
    struct Events {
        std::function<void()> load_page;   // the web process is ready for services.page_uri
        std::function<void()> check_over;  // nothing more is to be expected
        std::function<void()> processes_changed = [] {};
    };

    // `resources` are a script expression, or "". `check` may be null. Everything given by
    // reference must outlive the session.
    Session(Services& services, std::string resources, Transcript& transcript, PageCheck* check,
            Events events);

    // From the next offer on.
    void set_resources(std::string resources) { resources_ = std::move(resources); }
    const std::string& resources() const { return resources_; }

    // The window shows a page that the store page is to replace.
    void offer_page();

    // The window shows the store page.
    void notify_ready();

    // The processes that have announced themselves and have not gone.
    std::vector<int> processes() const;

    // Sends a message that nobody has asked for to one of them, or to all if `pid` is 0.
    void send_to(int pid, const webkit_message& message);

    // How answers are sent from now on.
    void set_misbehavior(Misbehavior kind) { misbehavior_ = kind; }

    // Misbehaves to all processes once, without a request.
    void misbehave_now(Misbehavior kind);

    void on_message(Connection& connection, const webkit_message& message) override;
    void on_end(Connection& connection, std::string_view why) override;

  private:
    enum class Phase : std::uint8_t { starting, offering, loading, shown };

    void introduce(Connection& connection, int pid);
    void carry_out(Connection& connection, const Command& command, const Request& request,
                   std::uint64_t serial);
    void act(Connection& connection, const Command& command, const Request& request,
             std::uint64_t serial);
    void note_check_over();

    void send(Connection& connection, Frame frame);
    void send(Connection& connection, Outgoing outgoing, std::uint64_t answer_to);
    void send_page(Connection& connection);
    void send_ready(Connection& connection);
    void send_script(Connection& connection, std::string_view script);
    bool send_answer(Connection& connection, const Answer& answer, std::uint64_t request);

    Services& services_;
    std::string resources_;
    Transcript& transcript_;
    PageCheck* check_;
    Events events_;
    std::vector<Connection*> announced_;
    Phase phase_ = Phase::starting;
    Misbehavior misbehavior_ = Misbehavior::none;
};

}  // namespace kestrel
