#include "workbench/workbench.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <vector>

#include "program/translation.h"
#include "workbench/check/api_coverage_check.h"
#include "workbench/check/script_check.h"
#include "workbench/desktop/app_icon.h"
#include "workbench/desktop/catalogues.h"
#include "workbench/desktop/headless_user_interface.h"
#include "workbench/window/sandbox.h"
#include "workbench/window/window_user_interface.h"

namespace kestrel {
namespace {

constexpr std::chrono::seconds kExitTimeout{2};

// Handled so that the transcript is completed and the temporary home removed.
constexpr std::array kEndingSignals = {SIGHUP, SIGINT, SIGTERM};

constexpr int kIconSize = 64;  // pixels

// The size of a screenshot.
constexpr int kHeadlessWidth = 1'280;
constexpr int kHeadlessHeight = 860;

std::string database_path(const std::string& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        throw DatabaseError(
            formatted(translate("%s cannot be opened or created"), directory.c_str()));
    }
    return directory + "/" + std::string(kStoreDatabaseFile);
}

std::string icon_uri(const std::string& icon) {
    return icon_data_uri(gtk_icon_theme_get_default(), icon, kIconSize);
}

GtkWidget* show_off_screen(GtkWidget* view) {
    GtkWidget* window = gtk_offscreen_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window), kHeadlessWidth, kHeadlessHeight);
    gtk_container_add(GTK_CONTAINER(window), view);
    gtk_widget_show_all(window);
    return window;
}

}  // namespace

Workbench::Workbench(const Options& options, const PrivateHome& home, Transcript& transcript)
    : options_(options),
      transcript_(transcript),
      install_root_(options.install_root.empty() ? home.path() : options.install_root),
      loop_(g_main_loop_new(nullptr, FALSE), g_main_loop_unref),
      database_(database_path(options.data.empty() ? home.path() : options.data)),
      apps_(options.user_home),
      view_({.extension_directory = options.extension_directory,
             .install_root = install_root_,
             .home = home.path(),
             .resources = options.resources,
             .has_sandbox = has_sandbox(home.path())},
            view_events()),
      user_interface_(make_user_interface()),
      services_{options.page_uri, database_, apps_, requests_, *user_interface_, icon_uri},
      check_(make_check()),
      session_(services_, options.resources, transcript, check_.get(),
               {.load_page = [this] { view_.load(services_.page_uri); },
                .check_over = [this] { finish_check(); },
                .processes_changed =
                    [this] {
                        if (window_) window_->show_processes(session_.processes());
                    }}),
      server_(socket_path_in(home.path()), session_) {
    if (window_) {
        transcript_.set_note_listener(
            [this](const std::string& note) { window_->show_status(note); });
    }
}

Workbench::~Workbench() {
    transcript_.set_note_listener(nullptr);
    transcript_.log_to(nullptr);
}

bool Workbench::has_sandbox(const std::string& home) const {
    if (!options_.has_sandbox) return false;
    const std::string obstacle =
        sandbox_obstacle(home, {options_.extension_directory, install_root_, home});
    if (!obstacle.empty()) transcript_.note("no sandbox: " + obstacle);
    return obstacle.empty();
}

PageView::Events Workbench::view_events() {
    return {.empty_page_shown = [this] { session_.offer_page(); },
            .page_shown = [this] { session_.notify_ready(); },
            .failed = [this](const std::string& what) { on_page_failure(what); }};
}

std::unique_ptr<UserInterface> Workbench::make_user_interface() {
    if (options_.is_headless) {
        off_screen_.reset(show_off_screen(view_.widget()));
        return std::make_unique<HeadlessUserInterface>(
            options_.agrees, HeadlessUserInterface::Events{
                                 .shown = [this](const std::string& line) { show_notice(line); },
                                 .open_default_store = [this] { open_default_store(); }});
    }
    window_ = std::make_unique<WorkbenchWindow>(
        view_.widget(), log_,
        LocaleMenu::Choices{locales_with_catalogue(install_root_), options_.locale},
        window_events());
    window_->show_address(options_.page_uri);
    transcript_.log_to(&log_);
    return std::make_unique<WindowUserInterface>(
        window_->window(), view_.widget(),
        WindowUserInterface::Events{
            .notice = [this](const std::string& line) { show_notice(line); },
            .open_default_store = [this] { open_default_store(); },
            .reload = [this] { reload(); },
            .show_inspector = [this] { view_.show_inspector(); }});
}

WorkbenchWindow::Events Workbench::window_events() {
    return {.reload = [this] { reload(); },
            .show_inspector = [this] { view_.show_inspector(); },
            .closed = [this] { leave(0); },
            .load = [this](const std::string& address) { load(address); },
            .load_resources = [this](const std::string& path) { load_resources(path); },
            .send = [this](int pid, Frame frame) { session_.send_to(pid, *frame); },
            .bad_host = {.chosen = [this](Misbehavior kind) { session_.set_misbehavior(kind); },
                         .at_once = [this](Misbehavior kind) { session_.misbehave_now(kind); }},
            .choose_locale =
                [this](const std::string& locale) {
                    wanted_locale_ = locale;
                    leave(0);
                }};
}

std::unique_ptr<PageCheck> Workbench::make_check() const {
    if (!options_.is_headless) return nullptr;
    if (options_.call_everything) return std::make_unique<ApiCoverageCheck>();
    // Only once the view exists: WebKit starts no process if JavaScriptCore was used before it.
    const std::string problem = ScriptCheck::find_syntax_error(options_.script);
    if (!problem.empty()) throw UsageError("--script: " + problem);
    return std::make_unique<ScriptCheck>(options_.script);
}

int Workbench::run() {
    EventSource time_limit;
    if (check_) {
        // The screenshot may hang too: the second timeout exits in any case.
        time_limit = EventSource::every(options_.timeout, [this] {
            if (is_leaving_) leave(1);
            finish_check();
        });
    }
    std::vector<EventSource> endings;
    endings.reserve(kEndingSignals.size());
    for (const int signal : kEndingSignals) {
        endings.push_back(EventSource::on_signal(signal, [this, signal] { leave(128 + signal); }));
    }
    view_.show_empty_page();
    g_main_loop_run(loop_.get());

    if (window_) window_->hide();
    view_.close();
    wait_for_web_processes();
    return status_;
}

void Workbench::show_notice(const std::string& text) { transcript_.note(text); }

void Workbench::load(const std::string& address) {
    try {
        std::string uri = page_address("the address", address);
        check_page_fits(uri, session_.resources());
        services_.page_uri = std::move(uri);
    } catch (const UsageError& error) {
        window_->show_status(error.what());
        return;
    }
    window_->show_address(services_.page_uri);
    reload();
}

void Workbench::load_resources(const std::string& path) {
    try {
        std::string text = text_of_file("resources", path);
        check_page_fits(services_.page_uri, text);
        session_.set_resources(std::move(text));
    } catch (const UsageError& error) {
        window_->show_status(error.what());
        return;
    }
    reload();
}

void Workbench::open_default_store() {
    if (view_.shows(options_.page_uri)) {
        show_notice("this is the default store");
        return;
    }
    services_.page_uri = options_.page_uri;
    if (window_) window_->show_address(services_.page_uri);
    session_.set_resources(options_.resources);
    reload();
}

void Workbench::reload() {
    if (server_.has_connections()) {
        session_.offer_page();
    } else {
        view_.show_empty_page();
    }
}

void Workbench::on_page_failure(const std::string& what) {
    transcript_.note(what);
    if (check_) finish_check();
}

void Workbench::finish_check() {
    if (is_leaving_) return;
    is_leaving_ = true;
    const std::vector<std::string> failures = check_->failures();
    for (const std::string& line : failures) transcript_.note("FAILED: " + line);
    if (failures.empty()) transcript_.note(check_->success());
    const int status = failures.empty() ? 0 : 1;
    if (options_.screenshot.empty()) {
        leave(status);
        return;
    }
    view_.take_picture(options_.screenshot, [this, status](bool is_saved) {
        if (!is_saved) transcript_.note("could not save " + options_.screenshot);
        leave(is_saved ? status : 1);
    });
}

void Workbench::leave(int status) {
    status_ = status;
    g_main_loop_quit(loop_.get());
}

// Otherwise they would write into the home directory while it is being removed.
void Workbench::wait_for_web_processes() {
    bool is_over = false;
    const auto limit = EventSource::every(kExitTimeout, [&] { is_over = true; });
    while (server_.has_connections() && !is_over) g_main_context_iteration(nullptr, TRUE);
}

}  // namespace kestrel
