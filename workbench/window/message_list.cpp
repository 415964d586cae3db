#include "workbench/window/message_list.h"

#include <algorithm>
#include <string>
#include <utility>

#include "program/translation.h"
#include "workbench/window/message_columns.h"

namespace kestrel {
namespace {

constexpr const char* kPartnerBackground = "rgba(246, 211, 45, 0.45)";
constexpr const char* kNoteColor = "#77767b";

std::uint64_t serial_in(GtkTreeModel* model, GtkTreeIter* row) {
    guint64 serial = 0;
    gtk_tree_model_get(model, row, 0, &serial, -1);
    return serial;
}

GtkWidget* icon_button(GtkWidget* button, const char* icon, const char* tooltip) {
    gtk_button_set_image(GTK_BUTTON(button),
                         gtk_image_new_from_icon_name(icon, GTK_ICON_SIZE_BUTTON));
    gtk_widget_set_tooltip_text(button, tooltip);
    return button;
}

bool scrolls_up(GdkEvent* event) {
    GdkScrollDirection direction = GDK_SCROLL_DOWN;
    if (gdk_event_get_scroll_direction(event, &direction) != FALSE) {
        return direction == GDK_SCROLL_UP;
    }
    double x = 0;
    double y = 0;
    return gdk_event_get_scroll_deltas(event, &x, &y) != FALSE && y < 0;
}

std::string grouped(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, ",");
    return text;
}

}  // namespace

MessageList::MessageList(MessageLog& log, OnSelected on_selected)
    : log_(log),
      view_(log),
      on_selected_(std::move(on_selected)),
      root_(take_reference(gtk_box_new(GTK_ORIENTATION_VERTICAL, 0))) {
    gtk_box_pack_start(GTK_BOX(root_.get()), make_toolbar(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(root_.get()), make_rows(), TRUE, TRUE, 0);
    connect_signals();
    gtk_widget_show_all(root_.get());
    log_.set_listener([this] { refresh(); });
    refresh();
}

MessageList::~MessageList() {
    log_.set_listener(nullptr);
    g_signal_handlers_disconnect_by_data(position_, this);
    gtk_widget_destroy(root_.get());
}

GtkWidget* MessageList::make_toolbar() {
    filter_ = gtk_search_entry_new();
    gtk_entry_set_placeholder_text(GTK_ENTRY(filter_),
                                   translate("Filter: type, name, process, items"));
    pause_ = icon_button(gtk_toggle_button_new(), "media-playback-pause-symbolic",
                         translate("Pause the list; recording continues"));
    clear_ = icon_button(gtk_button_new(), "edit-clear-all-symbolic", translate("Clear the list"));
    count_ = gtk_label_new("");
    gtk_widget_set_name(filter_, "filter");
    gtk_widget_set_name(pause_, "pause");
    gtk_widget_set_name(clear_, "clear");
    gtk_widget_set_name(count_, "count");

    GtkWidget* bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    g_object_set(bar, "margin", 6, nullptr);
    gtk_box_pack_start(GTK_BOX(bar), filter_, TRUE, TRUE, 0);
    for (GtkWidget* each : {count_, pause_, clear_}) {
        gtk_box_pack_start(GTK_BOX(bar), each, FALSE, FALSE, 0);
    }
    return bar;
}

GtkWidget* MessageList::make_rows() {
    rows_ = GTK_TREE_VIEW(gtk_tree_view_new());
    gtk_widget_set_name(GTK_WIDGET(rows_), "messages");
    gtk_tree_view_set_enable_search(rows_, FALSE);
    add_message_columns(
        rows_,
        [](void* self, const MessageColumn& column, GtkCellRenderer* cell, GtkTreeModel* model,
           GtkTreeIter* row) {
            static_cast<const MessageList*>(self)->set_cell(column, cell, serial_in(model, row));
        },
        this);
    // Makes the cost of a row independent of the number of rows.
    gtk_tree_view_set_fixed_height_mode(rows_, TRUE);

    GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_container_add(GTK_CONTAINER(scroller), GTK_WIDGET(rows_));
    position_ = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroller));
    return scroller;
}

void MessageList::connect_signals() {
    const auto connect = [this](void* object, const char* signal, void (*handler)(MessageList*)) {
        g_signal_connect_swapped(object, signal, G_CALLBACK(handler), this);
    };
    connect(filter_, "search-changed", [](MessageList* self) {
        self->view_.set_filter(gtk_entry_get_text(GTK_ENTRY(self->filter_)));
        self->refresh();
    });
    connect(pause_, "toggled", [](MessageList* self) {
        self->view_.set_paused(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(self->pause_)) !=
                               FALSE);
        self->refresh();
    });
    connect(clear_, "clicked", [](MessageList* self) { self->clear(); });
    connect(gtk_tree_view_get_selection(rows_), "changed",
            [](MessageList* self) { self->on_selection(); });
    connect(rows_, "row-activated", [](MessageList* self) { self->select(self->partner_); });
    connect(rows_, "size-allocate", [](MessageList* self) {
        self->needs_layout_ = false;
        self->follow();
    });
    connect(position_, "changed", [](MessageList* self) { self->follow(); });
    connect(position_, "value-changed", [](MessageList* self) { self->on_scroll(); });
    // Until the rows are laid out, only input events tell where the user scrolls.
    g_signal_connect(rows_, "scroll-event",
                     G_CALLBACK(+[](GtkWidget*, GdkEvent* event, MessageList* self) -> gboolean {
                         if (scrolls_up(event)) self->follows_ = false;
                         return GDK_EVENT_PROPAGATE;
                     }),
                     this);
    g_signal_connect(
        gtk_scrolled_window_get_vscrollbar(
            GTK_SCROLLED_WINDOW(gtk_widget_get_parent(GTK_WIDGET(rows_)))),
        "change-value",
        G_CALLBACK(+[](GtkRange*, GtkScrollType, double value, MessageList* self) -> gboolean {
            self->follows_ = self->is_at_end(value);
            return GDK_EVENT_PROPAGATE;
        }),
        this);
}

void MessageList::refresh() {
    const MessageView::Change change = view_.update();
    is_updating_ = true;
    if (change.is_new_list) {
        show_new_list();
    } else {
        remove_first(change.removed_first);
        append_last(change.added_last);
    }
    keep_selection();
    is_updating_ = false;
    show_count();

    const LoggedMessage* selected = view_.find(selected_);
    if (selected != nullptr && selected->partner && partner_ == 0) {
        partner_ = selected->partner->serial;
        on_selected_(*selected);
    }
    // Any row may have got a partner.
    gtk_widget_queue_draw(GTK_WIDGET(rows_));
}

void MessageList::show_new_list() {
    const ObjectHandle<GtkListStore> model(gtk_list_store_new(1, G_TYPE_UINT64));
    model_ = model.get();
    for (const std::uint64_t serial : view_.serials()) {
        gtk_list_store_insert_with_values(model_, nullptr, -1, 0, serial, -1);
    }
    gtk_tree_view_set_model(rows_, GTK_TREE_MODEL(model_));
    needs_layout_ = true;
    const auto selected = std::ranges::lower_bound(view_.serials(), selected_);
    if (selected != view_.serials().end() && *selected == selected_) {
        GtkTreeIter row;
        gtk_tree_model_iter_nth_child(GTK_TREE_MODEL(model_), &row, nullptr,
                                      static_cast<int>(selected - view_.serials().begin()));
        gtk_tree_selection_select_iter(gtk_tree_view_get_selection(rows_), &row);
    }
}

void MessageList::remove_first(std::size_t count) {
    if (count > 0) needs_layout_ = true;
    GtkTreeIter row;
    while (count-- > 0 && gtk_tree_model_get_iter_first(GTK_TREE_MODEL(model_), &row) != FALSE) {
        gtk_list_store_remove(model_, &row);
    }
}

void MessageList::append_last(std::size_t count) {
    if (count > 0) needs_layout_ = true;
    const auto& serials = view_.serials();
    for (auto serial = serials.end() - static_cast<std::ptrdiff_t>(count); serial != serials.end();
         ++serial) {
        gtk_list_store_insert_with_values(model_, nullptr, -1, 0, *serial, -1);
    }
}

// GTK selects the next row when the selected one is removed; undo that.
void MessageList::keep_selection() {
    GtkTreeSelection* selection = gtk_tree_view_get_selection(rows_);
    GtkTreeIter row;
    if (gtk_tree_selection_get_selected(selection, nullptr, &row) != FALSE &&
        serial_in(GTK_TREE_MODEL(model_), &row) != selected_) {
        gtk_tree_selection_unselect_all(selection);
    }
}

void MessageList::show_count() {
    const std::string text =
        view_.is_paused()
            ? formatted(translate("%s waiting"), grouped(view_.waiting()).c_str())
            : formatted(translate("%s shown"), grouped(view_.serials().size()).c_str());
    gtk_label_set_text(GTK_LABEL(count_), text.c_str());
}

void MessageList::clear() {
    log_.clear();
    if (view_.is_paused()) {
        view_.set_paused(false);
        view_.set_paused(true);
    }
    selected_ = 0;
    partner_ = 0;
    refresh();
}

void MessageList::select(std::uint64_t serial) {
    const auto found = std::ranges::lower_bound(view_.serials(), serial);
    if (found == view_.serials().end() || *found != serial) return;
    follows_ = false;
    GtkTreePath* path =
        gtk_tree_path_new_from_indices(static_cast<int>(found - view_.serials().begin()), -1);
    gtk_tree_view_set_cursor(rows_, path, nullptr, FALSE);
    gtk_tree_path_free(path);
}

void MessageList::on_selection() {
    if (is_updating_) return;
    GtkTreeIter row;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(rows_), nullptr, &row) ==
        FALSE) {
        return;
    }
    selected_ = serial_in(GTK_TREE_MODEL(model_), &row);
    const LoggedMessage* message = view_.find(selected_);
    partner_ = message != nullptr && message->partner ? message->partner->serial : 0;
    if (message != nullptr) on_selected_(*message);
    gtk_widget_queue_draw(GTK_WIDGET(rows_));
}

void MessageList::on_scroll() {
    if (is_updating_ || needs_layout_) return;
    follows_ = is_at_end(gtk_adjustment_get_value(position_));
}

bool MessageList::is_at_end(double value) const {
    return value + gtk_adjustment_get_page_size(position_) >=
           gtk_adjustment_get_upper(position_) - 1;
}

void MessageList::follow() {
    if (!follows_) return;
    gtk_adjustment_set_value(
        position_, gtk_adjustment_get_upper(position_) - gtk_adjustment_get_page_size(position_));
}

void MessageList::set_cell(const MessageColumn& column, GtkCellRenderer* cell,
                           std::uint64_t serial) const {
    const LoggedMessage* message = view_.find(serial);
    if (message == nullptr) {
        g_object_set(cell, "text", "", nullptr);
        return;
    }
    const bool is_partner = serial == partner_;
    g_object_set(cell, "text", column.text(*message).c_str(), "cell-background",
                 is_partner ? kPartnerBackground : nullptr, "foreground",
                 message->record->frame ? nullptr : kNoteColor, nullptr);
}

}  // namespace kestrel
