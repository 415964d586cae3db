#include "host/host_application.h"

#include <csignal>

namespace kestrel {
namespace {

constexpr std::chrono::seconds kPatienceAtExit{2};

}  // namespace

HostApplication::HostApplication(const Options& options, const PrivateHome& home,
                                 Transcript& transcript)
    : options_(options),
      transcript_(transcript),
      loop_(g_main_loop_new(nullptr, FALSE), g_main_loop_unref),
      session_({options.page_uri, options.resources}, transcript,
               options.call_everything ? &rehearsal_ : nullptr, session_events()),
      server_(socket_path_in(home.path()), session_),
      window_(
          {options.extension_directory,
           options.install_root.empty() ? home.path() : options.install_root, options.resources},
          window_events()) {
    transcript_.set_listener([this](const std::string& line) { window_.show_status(line); });
}

HostApplication::~HostApplication() { transcript_.set_listener(nullptr); }

StoreWindow::Events HostApplication::window_events() {
    return {.empty_page_shown = [this] { session_.offer_page(); },
            .page_shown = [this] { session_.greet_page(); },
            .reload_wanted = [this] { reload(); },
            .closed = [this] { options_.call_everything ? finish_rehearsal() : leave(0); },
            .failed = [this](const std::string& what) { give_up(what); }};
}

Session::Events HostApplication::session_events() {
    return {.load_page = [this] { window_.load(options_.page_uri); },
            .rehearsal_over = [this] { finish_rehearsal(); }};
}

int HostApplication::run() {
    EventSource time_limit;
    if (options_.call_everything) {
        // The picture may never come either: whoever is still here the next time leaves.
        time_limit = EventSource::every(options_.timeout, [this] {
            if (is_leaving_) leave(1);
            finish_rehearsal();
        });
    }
    const auto interrupted = EventSource::on_signal(SIGINT, [this] { leave(128 + SIGINT); });
    const auto terminated = EventSource::on_signal(SIGTERM, [this] { leave(128 + SIGTERM); });
    window_.show_empty_page();
    g_main_loop_run(loop_.get());

    window_.close();
    wait_for_web_processes();
    return status_;
}

void HostApplication::reload() {
    if (server_.has_connections()) {
        session_.offer_page();
    } else {
        window_.show_empty_page();
    }
}

void HostApplication::give_up(const std::string& what) {
    transcript_.note(what);
    if (options_.call_everything) finish_rehearsal();
}

void HostApplication::finish_rehearsal() {
    if (is_leaving_) return;
    is_leaving_ = true;
    const std::vector<std::string> missing = rehearsal_.missing();
    for (const std::string& line : missing) transcript_.note("MISSING: " + line);
    if (missing.empty()) transcript_.note("every function reached the host, every callback ran");
    const int status = missing.empty() ? 0 : 1;
    if (options_.screenshot.empty()) {
        leave(status);
        return;
    }
    window_.take_picture(options_.screenshot, [this, status](bool is_saved) {
        if (!is_saved) transcript_.note("could not save " + options_.screenshot);
        leave(is_saved ? status : 1);
    });
}

void HostApplication::leave(int status) {
    status_ = status;
    g_main_loop_quit(loop_.get());
}

// They would write into the home directory while it is being removed.
void HostApplication::wait_for_web_processes() {
    bool is_over = false;
    const auto limit = EventSource::every(kPatienceAtExit, [&] { is_over = true; });
    while (server_.has_connections() && !is_over) g_main_context_iteration(nullptr, TRUE);
}

}  // namespace kestrel
