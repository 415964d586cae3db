// The host's side of the protocol, for all web processes of one window.
//
// The window first shows an empty page, which starts a web process. Once that page is shown and the
// process has announced itself, the session sends the store page's URL and resources, and loads the
// store page when the process confirms them. When the page has loaded, it gets the host-ready
// script, and calls the host only then: before, its link may not be up.
//
// WebKit may move the page to another process at any time, so everything is sent to every announced
// process.
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
        std::function<void()> check_over;  // the check has finished
        std::function<void()> processes_changed = [] {};
    };

    // `resources` is a script expression or "". `check` may be null. All references must outlive
    // the session.
    Session(Services& services, std::string resources, Transcript& transcript, PageCheck* check,
            Events events);

    // Takes effect with the next offer_page.
    void set_resources(std::string resources) { resources_ = std::move(resources); }
    const std::string& resources() const { return resources_; }

    // Call when the window shows a page that the store page is to replace.
    void offer_page();

    // Call when the window shows the store page.
    void notify_ready();

    // The process ids of the announced, connected processes.
    std::vector<int> processes() const;

    // Sends an unrequested message to one process, or to all if `pid` is 0.
    void send_to(int pid, const webkit_message& message);

    // Applies to all answers from now on.
    void set_misbehavior(Misbehavior kind) { misbehavior_ = kind; }

    // Misbehaves once towards all processes, without a request.
    void misbehave_now(Misbehavior kind);

    void on_message(Connection& connection, const webkit_message& message) override;
    void on_end(Connection& connection, std::string_view why) override;

  private:
    enum class Phase : std::uint8_t { starting, offering, loading, shown };

    void on_announce(Connection& connection, int pid);
    void dispatch(Connection& connection, const Command& command, const Request& request,
                  std::uint64_t serial);
    void run_action(Connection& connection, const Command& command, const Request& request,
                    std::uint64_t serial);
    void report_check_over();

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
