#include "workbench/window/message_details.h"

#include "program/translation.h"
#include "workbench/wire/details_text.h"

namespace kestrel {
namespace {

constexpr const char* kHint = translatable("Select a message to see its items and its bytes.");
constexpr int kMargin = 8;

}  // namespace

MessageDetails::MessageDetails()
    : root_(take_reference(gtk_scrolled_window_new(nullptr, nullptr))),
      text_(GTK_TEXT_VIEW(gtk_text_view_new())) {
    gtk_widget_set_name(GTK_WIDGET(text_), "details");
    gtk_text_view_set_editable(text_, FALSE);
    gtk_text_view_set_cursor_visible(text_, FALSE);
    gtk_text_view_set_monospace(text_, TRUE);
    gtk_text_view_set_wrap_mode(text_, GTK_WRAP_CHAR);
    gtk_text_view_set_left_margin(text_, kMargin);
    gtk_text_view_set_right_margin(text_, kMargin);
    gtk_text_view_set_top_margin(text_, kMargin);
    gtk_text_view_set_bottom_margin(text_, kMargin);
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(text_), translate(kHint), -1);
    gtk_container_add(GTK_CONTAINER(root_.get()), GTK_WIDGET(text_));
    gtk_widget_show_all(root_.get());
}

MessageDetails::~MessageDetails() { gtk_widget_destroy(root_.get()); }

void MessageDetails::show(const LoggedMessage& message) {
    const std::string text = details_text(message);
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(text_), text.data(),
                             static_cast<int>(text.size()));
}

}  // namespace kestrel
