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

#include "host/answer.h"
#include "host/connection.h"
#include "host/rehearsal.h"
#include "host/request.h"
#include "host/store_state.h"
#include "host/transcript.h"

namespace kestrel {

class Session final : public MessageReceiver {
  public:
    struct Page {
        std::string uri;
        std::string resources;  // a script expression, or ""
    };
    struct Events {
        std::function<void()> load_page;       // the web process is ready for it
        std::function<void()> rehearsal_over;  // nothing more will come
    };

    // With a rehearsal, the page is asked to call every function. Everything given by reference
    // must outlive the session.
    Session(Page page, Transcript& transcript, Rehearsal* rehearsal, Events events);

    // The window shows a page that the store page is to replace.
    void offer_page();

    // The window shows the store page.
    void greet_page();

    void on_message(Connection& connection, const webkit_message& message) override;
    void on_end(Connection& connection, std::string_view why) override;

  private:
    enum class Phase : std::uint8_t { starting, offering, loading, shown };

    void introduce(Connection& connection, int pid);
    void carry_out(Connection& connection, const Command& command, const Request& request);
    void rehearse(Connection& connection, const Command& command, const Request& request);
    void finish_rehearsal_if_over();

    void send(Connection& connection, Frame frame);
    void send_page(Connection& connection);
    void send_script(Connection& connection, std::string_view script);
    void send_answer(Connection& connection, const Answer& answer);

    Page page_;
    Transcript& transcript_;
    Rehearsal* rehearsal_;
    Events events_;
    StoreState state_;
    std::vector<Connection*> announced_;
    Phase phase_ = Phase::starting;
};

}  // namespace kestrel
