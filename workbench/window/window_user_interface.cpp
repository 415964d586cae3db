#include "workbench/window/window_user_interface.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "program/translation.h"
#include "workbench/desktop/glib_handles.h"

namespace kestrel {
namespace {

// Further questions of the page are declined.
constexpr std::size_t kMaxDialogs = 8;

// Texts from a page may be of any length; a dialog larger than the screen could not be closed.
constexpr glong kMaxShown = 400;

std::string shortened(const std::string& text) {
    if (g_utf8_strlen(text.c_str(), -1) <= kMaxShown) return text;
    const GlibText start(g_utf8_substring(text.c_str(), 0, kMaxShown));
    return std::string(start.get()) + "…";
}

using Event = std::unique_ptr<GdkEvent, decltype(&gdk_event_free)>;

// GTK wants the triggering event for a menu; the one in the web process is not available.
Event event_at(GdkWindow* window) {
    Event event(gdk_event_new(GDK_BUTTON_RELEASE), gdk_event_free);
    event->any.window = GDK_WINDOW(g_object_ref(window));
    gdk_event_set_device(
        event.get(),
        gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_window_get_display(window))));
    return event;
}

}  // namespace

struct WindowUserInterface::OpenDialog {
    WindowUserInterface& user_interface;
    GtkWidget* widget;
    std::function<void(bool)> done;
};

WindowUserInterface::WindowUserInterface(GtkWindow* window, GtkWidget* view, Events events)
    : window_(window), view_(view), events_(std::move(events)) {}

WindowUserInterface::~WindowUserInterface() {
    for (OpenDialog* dialog : dialogs_) {
        gtk_widget_destroy(dialog->widget);
        delete dialog;
    }
}

GtkWidget* WindowUserInterface::make_dialog(GtkMessageType type, const std::string& text,
                                            const std::string& details) {
    GtkWidget* dialog = gtk_message_dialog_new(
        window_, static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT),
        type, GTK_BUTTONS_NONE, "%s", shortened(text).c_str());
    if (!details.empty()) {
        gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s",
                                                 shortened(details).c_str());
    }
    return dialog;
}

void WindowUserInterface::show(GtkWidget* dialog, std::function<void(bool)> done) {
    auto* open = new OpenDialog{*this, dialog, std::move(done)};
    dialogs_.insert(open);
    g_signal_connect(dialog, "response",
                     G_CALLBACK(+[](GtkDialog*, int response, OpenDialog* self) {
                         self->user_interface.on_response(*self, response);
                     }),
                     open);
    gtk_widget_show_all(dialog);
}

void WindowUserInterface::on_response(OpenDialog& dialog, int response) {
    const std::unique_ptr<OpenDialog> owned(&dialog);
    dialogs_.erase(&dialog);
    gtk_widget_destroy(dialog.widget);
    dialog.done(response == GTK_RESPONSE_ACCEPT);
}

void WindowUserInterface::ask(const Question& question, std::function<void(bool agrees)> done) {
    if (dialogs_.size() >= kMaxDialogs) {
        done(false);
        return;
    }
    GtkWidget* dialog = make_dialog(GTK_MESSAGE_QUESTION, question.text, question.details);
    gtk_dialog_add_button(GTK_DIALOG(dialog), translate("Cancel"), GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(GTK_DIALOG(dialog), question.consent.c_str(), GTK_RESPONSE_ACCEPT);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    show(dialog, std::move(done));
}

void WindowUserInterface::report_error(const ErrorReport& report,
                                       std::function<void(bool is_pressed)> done) {
    if (dialogs_.size() >= kMaxDialogs) {
        done(false);
        return;
    }
    const std::string details =
        report.details.empty() ? report.text : report.text + "\n\n" + report.details;
    GtkWidget* dialog = report.title.empty()
                            ? make_dialog(GTK_MESSAGE_ERROR, report.text, report.details)
                            : make_dialog(GTK_MESSAGE_ERROR, report.title, details);
    gtk_dialog_add_button(
        GTK_DIALOG(dialog),
        report.button.empty() ? translate("Close") : shortened(report.button).c_str(),
        GTK_RESPONSE_ACCEPT);
    show(dialog, std::move(done));
}

void WindowUserInterface::show_accounts(std::span<const Account> accounts) {
    if (dialogs_.size() >= kMaxDialogs) return;
    std::string lines;
    for (const Account& account : accounts) {
        lines += (lines.empty() ? "" : "\n") + account.name + " (" + account.user + ")";
    }
    GtkWidget* dialog = make_dialog(GTK_MESSAGE_INFO, translate("Accounts"), lines);
    gtk_dialog_add_button(GTK_DIALOG(dialog), translate("Close"), GTK_RESPONSE_CLOSE);
    show(dialog, [](bool) {});
}

GtkWidget* WindowUserInterface::settings_menu() {
    struct Entry {
        const char* label;
        std::function<void()> Events::*action;
    };
    static constexpr std::array kEntries = {
        Entry{translatable("Reload the page"), &Events::reload},
        Entry{translatable("Go to the default store"), &Events::open_default_store},
        Entry{translatable("Web Inspector"), &Events::show_inspector},
    };
    GtkWidget* menu = gtk_menu_new();
    for (const Entry& entry : kEntries) {
        GtkWidget* item = gtk_menu_item_new_with_label(translate(entry.label));
        g_signal_connect_swapped(item, "activate",
                                 G_CALLBACK(+[](const std::function<void()>* act) { (*act)(); }),
                                 &(events_.*entry.action));
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    }
    gtk_menu_attach_to_widget(GTK_MENU(menu), view_, nullptr);
    gtk_widget_show_all(menu);
    return menu;
}

void WindowUserInterface::show_settings_menu(const Area& area) {
    if (menu_ == nullptr) menu_ = settings_menu();
    const GdkRectangle place{area.left, area.top, std::max(area.width, 0),
                             std::max(area.height, 0)};
    GdkWindow* window = gtk_widget_get_window(view_);
    const Event trigger = event_at(window);
    gtk_menu_popup_at_rect(GTK_MENU(menu_), window, &place, GDK_GRAVITY_SOUTH_WEST,
                           GDK_GRAVITY_NORTH_WEST, trigger.get());
}

void WindowUserInterface::show_notice(const std::string& text) { events_.notice(text); }

void WindowUserInterface::open_default_store() { events_.open_default_store(); }

}  // namespace kestrel
