#include "workbench/window/send_panel.h"

#include <charconv>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "program/translation.h"

namespace kestrel {
namespace {

constexpr const char* kAllProcesses = "0";
constexpr int kSpacing = 6;

GtkTextView* make_text(const char* name) {
    auto* view = GTK_TEXT_VIEW(gtk_text_view_new());
    gtk_widget_set_name(GTK_WIDGET(view), name);
    gtk_text_view_set_monospace(view, TRUE);
    gtk_text_view_set_wrap_mode(view, GTK_WRAP_CHAR);
    gtk_text_view_set_accepts_tab(view, FALSE);
    return view;
}

GtkEntry* make_entry(const char* name, const char* placeholder) {
    auto* entry = GTK_ENTRY(gtk_entry_new());
    gtk_widget_set_name(GTK_WIDGET(entry), name);
    gtk_entry_set_placeholder_text(entry, placeholder);
    return entry;
}

GtkWidget* framed(GtkTextView* view) {
    GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroller), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scroller), GTK_WIDGET(view));
    return scroller;
}

GtkWidget* label(const char* text) {
    GtkWidget* made = gtk_label_new(text);
    gtk_label_set_xalign(GTK_LABEL(made), 0);
    return made;
}

// A page of the stack: an entry, a label, a text view.
GtkWidget* page(GtkEntry* entry, const char* what, GtkTextView* view) {
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, kSpacing);
    if (entry != nullptr) gtk_box_pack_start(GTK_BOX(box), GTK_WIDGET(entry), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), label(what), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), framed(view), TRUE, TRUE, 0);
    return box;
}

std::string text_of(GtkTextView* view) {
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(view);
    GtkTextIter begin;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer, &begin, &end);
    const GlibText text(gtk_text_buffer_get_text(buffer, &begin, &end, FALSE));
    return text.get();
}

// Splits into lines; the last newline is optional.
std::vector<std::string_view> lines_of(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

}  // namespace

SendPanel::SendPanel(OnSend on_send)
    : on_send_(std::move(on_send)),
      root_(take_reference(gtk_box_new(GTK_ORIENTATION_VERTICAL, kSpacing))) {
    g_object_set(root_.get(), "margin", 2 * kSpacing, nullptr);
    gtk_box_pack_start(GTK_BOX(root_.get()), make_kinds(), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(root_.get()), make_bottom(), FALSE, FALSE, 0);
    set_processes({});
    gtk_widget_show_all(root_.get());
}

SendPanel::~SendPanel() { gtk_widget_destroy(root_.get()); }

GtkWidget* SendPanel::make_kinds() {
    script_ = make_text("script");
    callback_ =
        make_entry("callback", translate("Callback: an expression that evaluates to a function"));
    arguments_ = make_text("arguments");
    url_ = make_entry("url", translate("URL of the page"));
    resources_ = make_text("resources");

    kinds_ = GTK_STACK(gtk_stack_new());
    gtk_widget_set_name(GTK_WIDGET(kinds_), "kinds");
    gtk_stack_add_titled(
        kinds_, page(nullptr, translate("Runs in the page as the body of a function"), script_),
        "script", translate("Script"));
    gtk_stack_add_titled(
        kinds_,
        page(callback_,
             translate(
                 "Arguments, one per line; passed if the callback contains zyns_ajax_complete"),
             arguments_),
        "answer", translate("Answer"));
    gtk_stack_add_titled(
        kinds_,
        page(url_, translate("Resources for the next page: a script expression"), resources_),
        "page", translate("Page"));
    GtkWidget* switcher = gtk_stack_switcher_new();
    gtk_stack_switcher_set_stack(GTK_STACK_SWITCHER(switcher), kinds_);
    gtk_widget_set_halign(switcher, GTK_ALIGN_CENTER);

    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, kSpacing);
    gtk_box_pack_start(GTK_BOX(box), switcher, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), GTK_WIDGET(kinds_), TRUE, TRUE, 0);
    return box;
}

GtkWidget* SendPanel::make_bottom() {
    process_ = GTK_COMBO_BOX_TEXT(gtk_combo_box_text_new());
    gtk_widget_set_name(GTK_WIDGET(process_), "process");
    problem_ = label("");
    gtk_widget_set_name(problem_, "problem");
    gtk_label_set_line_wrap(GTK_LABEL(problem_), TRUE);
    gtk_style_context_add_class(gtk_widget_get_style_context(problem_), GTK_STYLE_CLASS_ERROR);
    GtkWidget* send = gtk_button_new_with_label(translate("Send"));
    gtk_widget_set_name(send, "send");
    gtk_style_context_add_class(gtk_widget_get_style_context(send),
                                GTK_STYLE_CLASS_SUGGESTED_ACTION);
    g_signal_connect_swapped(send, "clicked", G_CALLBACK(+[](SendPanel* self) { self->send(); }),
                             this);

    GtkWidget* bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kSpacing);
    gtk_box_pack_start(GTK_BOX(bar), label(translate("To")), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(bar), GTK_WIDGET(process_), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(bar), problem_, TRUE, TRUE, 0);
    gtk_box_pack_end(GTK_BOX(bar), send, FALSE, FALSE, 0);
    return bar;
}

void SendPanel::set_processes(std::span<const int> pids) {
    const char* active = gtk_combo_box_get_active_id(GTK_COMBO_BOX(process_));
    const std::string chosen = active == nullptr ? kAllProcesses : active;
    gtk_combo_box_text_remove_all(process_);
    gtk_combo_box_text_append(process_, kAllProcesses, translate("all processes"));
    for (const int pid : pids) {
        const std::string text = std::to_string(pid);
        gtk_combo_box_text_append(process_, text.c_str(),
                                  formatted(translate("process %s"), text.c_str()).c_str());
    }
    if (gtk_combo_box_set_active_id(GTK_COMBO_BOX(process_), chosen.c_str()) == FALSE) {
        gtk_combo_box_set_active_id(GTK_COMBO_BOX(process_), kAllProcesses);
    }
}

ComposedMessage SendPanel::compose() const {
    const std::string_view kind = gtk_stack_get_visible_child_name(kinds_);
    if (kind == "answer") {
        const std::string arguments = text_of(arguments_);
        return compose_answer(gtk_entry_get_text(callback_), lines_of(arguments));
    }
    if (kind == "page") return compose_page(gtk_entry_get_text(url_), text_of(resources_));
    return compose_script(text_of(script_));
}

void SendPanel::send() {
    ComposedMessage message = compose();
    gtk_label_set_text(GTK_LABEL(problem_), message.problem.c_str());
    if (!message.frame) return;
    const std::string_view chosen = gtk_combo_box_get_active_id(GTK_COMBO_BOX(process_));
    int pid = 0;
    std::from_chars(chosen.data(), chosen.data() + chosen.size(), pid);
    on_send_(pid, std::move(message.frame));
}

}  // namespace kestrel
