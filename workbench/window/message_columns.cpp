#include "workbench/window/message_columns.h"

#include "program/translation.h"
#include "trace/frame_text.h"
#include "workbench/desktop/glib_handles.h"

namespace kestrel {
namespace {

constexpr int kPadding = 10;
constexpr double kScale = 0.9;  // of the text, to show more of the items

// The data of a column's cell function; owned by the column.
struct Drawing {
    const MessageColumn& column;
    SetCell set_cell;
    void* data;
};

int text_width(GtkTreeView* view, const char* text) {
    const ObjectHandle<PangoLayout> layout(gtk_widget_create_pango_layout(GTK_WIDGET(view), text));
    int width = 0;
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_scale_new(kScale));
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
    pango_layout_get_pixel_size(layout.get(), &width, nullptr);
    return width + kPadding;
}

void draw(GtkTreeViewColumn* /*column*/, GtkCellRenderer* cell, GtkTreeModel* model,
          GtkTreeIter* row, void* data) {
    const auto* drawing = static_cast<const Drawing*>(data);
    drawing->set_cell(drawing->data, drawing->column, cell, model, row);
}

void add_column(GtkTreeView* view, const Drawing& drawing) {
    const MessageColumn& column = drawing.column;
    GtkCellRenderer* cell = gtk_cell_renderer_text_new();
    g_object_set(cell, "xalign", column.alignment, "single-paragraph-mode", TRUE, "ypad", 1,
                 "scale", kScale, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    GtkTreeViewColumn* made = gtk_tree_view_column_new();
    gtk_tree_view_column_set_title(made, translate(column.title));
    gtk_tree_view_column_set_alignment(made, column.alignment);
    gtk_tree_view_column_set_resizable(made, TRUE);
    gtk_tree_view_column_set_sizing(made, GTK_TREE_VIEW_COLUMN_FIXED);
    if (column.widest == nullptr) {
        gtk_tree_view_column_set_expand(made, TRUE);
    } else {
        gtk_tree_view_column_set_fixed_width(made, text_width(view, column.widest));
    }
    gtk_tree_view_column_pack_start(made, cell, TRUE);
    gtk_tree_view_column_set_cell_data_func(made, cell, draw, new Drawing(drawing),
                                            [](void* data) { delete static_cast<Drawing*>(data); });
    gtk_tree_view_append_column(view, made);
}

}  // namespace

std::string serial_cell(const LoggedMessage& message) { return std::to_string(message.serial); }

std::string time_cell(const LoggedMessage& message) { return time_text(message.record->time); }

std::string direction_cell(const LoggedMessage& message) {
    if (!message.record->frame) return "";
    return message.record->direction == Direction::from_page ? "\u2190" : "\u2192";
}

std::string process_cell(const LoggedMessage& message) {
    return message.record->pid == 0 ? "" : std::to_string(message.record->pid);
}

std::string type_cell(const LoggedMessage& message) { return type_text(*message.record); }

std::string items_cell(const LoggedMessage& message) {
    const MessageRecord& record = *message.record;
    return record.frame ? items_text(*record.frame) : record.note;
}

std::string size_cell(const LoggedMessage& message) {
    return message.record->frame ? std::to_string(message.record->size) : "";
}

void add_message_columns(GtkTreeView* view, SetCell set_cell, void* data) {
    for (const MessageColumn& column : kMessageColumns) {
        add_column(view, {column, set_cell, data});
    }
}

}  // namespace kestrel
