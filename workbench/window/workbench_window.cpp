#include "workbench/window/workbench_window.h"

#include <system_error>
#include <utility>

#include "program/translation.h"
#include "workbench/desktop/valid_utf8.h"

namespace kestrel {
namespace {

constexpr int kWindowWidth = 1'280;
constexpr int kWindowHeight = 860;
constexpr int kPageWidth = 520;
constexpr int kAddressWidth = 40;
constexpr int kSendWidth = 560;
constexpr int kSendHeight = 340;

GtkWidget* make_status_line() {
    GtkWidget* label = gtk_label_new("");
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_widget_set_name(label, "status");
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    gtk_widget_set_margin_start(label, 8);
    gtk_widget_set_margin_end(label, 8);
    gtk_style_context_add_class(gtk_widget_get_style_context(label), "monospace");
    return label;
}

template <typename Data>
GtkWidget* make_button(const char* name, const char* icon, const char* tooltip,
                       void (*action)(Data*), Data* data) {
    GtkWidget* button = gtk_button_new_from_icon_name(icon, GTK_ICON_SIZE_BUTTON);
    gtk_widget_set_name(button, name);
    gtk_widget_set_tooltip_text(button, tooltip);
    g_signal_connect_swapped(button, "clicked", G_CALLBACK(action), data);
    return button;
}

void call(std::function<void()>* event) { (*event)(); }

GtkWidget* make_send_button(GtkWidget* panel) {
    GtkWidget* button = gtk_menu_button_new();
    gtk_container_add(GTK_CONTAINER(button), gtk_label_new(translate("Send")));
    gtk_widget_set_tooltip_text(button, translate("Send a message to the page"));
    GtkWidget* popover = gtk_popover_new(button);
    gtk_widget_set_size_request(panel, kSendWidth, kSendHeight);
    gtk_container_add(GTK_CONTAINER(popover), panel);
    gtk_menu_button_set_popover(GTK_MENU_BUTTON(button), popover);
    return button;
}

// Asks for a file; "" if cancelled.
std::string choose_file(const char* title, GtkWidget* parent) {
    const ObjectHandle<GtkFileChooserNative> dialog(gtk_file_chooser_native_new(
        title, GTK_WINDOW(parent), GTK_FILE_CHOOSER_ACTION_OPEN, nullptr, nullptr));
    if (gtk_native_dialog_run(GTK_NATIVE_DIALOG(dialog.get())) != GTK_RESPONSE_ACCEPT) return "";
    return text_or_empty(
        GlibText(gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog.get()))).get());
}

}  // namespace

WorkbenchWindow::WorkbenchWindow(GtkWidget* view, MessageLog& log,
                                 const LocaleMenu::Choices& locales, Events events)
    : events_(std::move(events)),
      window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)),
      status_(make_status_line()),
      address_(gtk_entry_new()),
      pane_(log),
      send_panel_(events_.send),
      bad_host_(events_.bad_host),
      locales_(locales, events_.choose_locale) {
    gtk_container_add(GTK_CONTAINER(window_), make_body(view));
    gtk_window_set_titlebar(GTK_WINDOW(window_), make_header());
    gtk_window_set_title(GTK_WINDOW(window_), translate("Kestrel Workbench"));
    gtk_window_set_default_size(GTK_WINDOW(window_), kWindowWidth, kWindowHeight);
    g_signal_connect(window_, "delete-event",
                     G_CALLBACK(+[](GtkWidget*, GdkEvent*, WorkbenchWindow* self) -> gboolean {
                         self->events_.closed();
                         return TRUE;
                     }),
                     this);
    gtk_widget_show_all(window_);
}

// The parts destroy their widgets afterwards.
WorkbenchWindow::~WorkbenchWindow() {
    traces_.clear();
    g_signal_handlers_disconnect_by_data(window_, this);
    for (GtkWidget* part :
         {pane_.widget(), send_panel_.widget(), bad_host_.widget(), locales_.widget()}) {
        gtk_container_remove(GTK_CONTAINER(gtk_widget_get_parent(part)), part);
    }
    gtk_widget_destroy(window_);
}

GtkWidget* WorkbenchWindow::make_header() {
    gtk_entry_set_width_chars(GTK_ENTRY(address_), kAddressWidth);
    gtk_entry_set_placeholder_text(GTK_ENTRY(address_), translate("File or URL of a store page"));
    gtk_widget_set_name(address_, "address");
    g_signal_connect(address_, "activate", G_CALLBACK(+[](GtkEntry* entry, WorkbenchWindow* self) {
                         self->events_.load(gtk_entry_get_text(entry));
                     }),
                     this);
    GtkWidget* header = gtk_header_bar_new();
    gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(header), TRUE);
    gtk_header_bar_set_custom_title(GTK_HEADER_BAR(header), address_);
    for (GtkWidget* each :
         {make_button("reload", "view-refresh-symbolic", translate("Reload the store page"), call,
                      &events_.reload),
          make_button(
              "choose resources", "document-open-symbolic",
              translate("Resources for the page, from a file"),
              +[](WorkbenchWindow* self) { self->choose_resources(); }, this),
          locales_.widget(),
          make_button("inspector", "applications-engineering-symbolic", translate("Web Inspector"),
                      call, &events_.show_inspector)}) {
        gtk_header_bar_pack_start(GTK_HEADER_BAR(header), each);
    }
    for (GtkWidget* each :
         {make_button(
              "choose trace", "document-open-recent-symbolic", translate("Open a trace file"),
              +[](WorkbenchWindow* self) { self->choose_trace(); }, this),
          bad_host_.widget(), make_send_button(send_panel_.widget())}) {
        gtk_header_bar_pack_end(GTK_HEADER_BAR(header), each);
    }
    return header;
}

GtkWidget* WorkbenchWindow::make_body(GtkWidget* view) {
    GtkWidget* halves = gtk_paned_new(GTK_ORIENTATION_HORIZONTAL);
    gtk_paned_pack1(GTK_PANED(halves), view, TRUE, FALSE);
    gtk_paned_pack2(GTK_PANED(halves), pane_.widget(), TRUE, FALSE);
    gtk_paned_set_position(GTK_PANED(halves), kPageWidth);
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 2);
    gtk_box_pack_start(GTK_BOX(box), halves, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), status_, FALSE, FALSE, 2);
    return box;
}

void WorkbenchWindow::choose_resources() {
    const std::string path = choose_file(translate("Resources for the page"), window_);
    if (!path.empty()) events_.load_resources(path);
}

void WorkbenchWindow::choose_trace() {
    const std::string path = choose_file(translate("Trace file"), window_);
    if (!path.empty()) open_trace(path);
}

void WorkbenchWindow::open_trace(const std::string& path) {
    traces_.remove_if([](const TraceWindow& trace) { return trace.is_closed(); });
    try {
        traces_.emplace_back(path, window());
    } catch (const std::system_error& error) {
        show_status(error.what());
    }
}

void WorkbenchWindow::show_status(const std::string& text) {
    gtk_label_set_text(GTK_LABEL(status_), valid_utf8(text).c_str());
}

void WorkbenchWindow::show_address(const std::string& uri) {
    gtk_entry_set_text(GTK_ENTRY(address_), uri.c_str());
}

void WorkbenchWindow::hide() { gtk_widget_hide(window_); }

}  // namespace kestrel
