#include "tests/workbench/window/widgets.h"

#include <cstdlib>
#include <iostream>

#include "tests/support/main_loop.h"

namespace kestrel::testing {
namespace {

struct Search {
    const std::string& name;
    GtkWidget* found = nullptr;
};

void search(GtkWidget* widget, void* data) {
    auto& wanted = *static_cast<Search*>(data);
    if (wanted.found != nullptr) return;
    if (gtk_widget_get_name(widget) == wanted.name) {
        wanted.found = widget;
        return;
    }
    if (GTK_IS_MENU_BUTTON(widget)) {
        search(GTK_WIDGET(gtk_menu_button_get_popover(GTK_MENU_BUTTON(widget))), data);
    }
    if (GTK_IS_CONTAINER(widget)) gtk_container_forall(GTK_CONTAINER(widget), search, data);
}

std::string cell(GtkTreeView* view, int row_number, GtkTreeViewColumn* drawn) {
    GtkTreeModel* model = gtk_tree_view_get_model(view);
    GtkTreeIter row;
    gtk_tree_model_iter_nth_child(model, &row, nullptr, row_number);
    gtk_tree_view_column_cell_set_cell_data(drawn, model, &row, FALSE, FALSE);
    GList* renderers = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(drawn));
    char* text = nullptr;
    g_object_get(renderers->data, "text", &text, nullptr);
    g_list_free(renderers);
    std::string copy = text;
    g_free(text);
    return copy;
}

GtkTextBuffer* buffer_of(GtkWidget* text_view) {
    return gtk_text_view_get_buffer(GTK_TEXT_VIEW(text_view));
}

}  // namespace

ShownWidget::ShownWidget(GtkWidget* widget) : window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)) {
    gtk_window_set_default_size(GTK_WINDOW(window_), 900, 600);
    gtk_container_add(GTK_CONTAINER(window_), widget);
    gtk_widget_show(window_);
    run_main_loop_until([&] { return gtk_widget_get_mapped(widget) != FALSE; });
    run_main_loop_until_idle();
}

ShownWidget::~ShownWidget() {
    gtk_container_remove(GTK_CONTAINER(window_), gtk_bin_get_child(GTK_BIN(window_)));
    gtk_widget_destroy(window_);
}

GtkWidget* part(GtkWidget* root, const std::string& name) {
    Search wanted{name};
    search(root, &wanted);
    if (wanted.found == nullptr) {
        std::cerr << "no widget named " << name << '\n';
        std::abort();
    }
    return wanted.found;
}

void type_into(GtkWidget* widget, const std::string& text) {
    if (GTK_IS_ENTRY(widget)) {
        gtk_entry_set_text(GTK_ENTRY(widget), text.c_str());
    } else {
        gtk_text_buffer_set_text(buffer_of(widget), text.data(), static_cast<int>(text.size()));
    }
}

std::string text_in(GtkWidget* widget) {
    if (GTK_IS_LABEL(widget)) return gtk_label_get_text(GTK_LABEL(widget));
    GtkTextIter begin;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer_of(widget), &begin, &end);
    char* text = gtk_text_buffer_get_text(buffer_of(widget), &begin, &end, TRUE);
    std::string copy = text;
    g_free(text);
    return copy;
}

std::vector<std::string> cells(GtkWidget* tree_view, int row) {
    std::vector<std::string> texts;
    GtkTreeView* view = GTK_TREE_VIEW(tree_view);
    for (int i = 0; i < static_cast<int>(gtk_tree_view_get_n_columns(view)); ++i) {
        texts.push_back(cell(view, row, gtk_tree_view_get_column(view, i)));
    }
    return texts;
}

std::vector<std::string> column(GtkWidget* tree_view, int column) {
    std::vector<std::string> texts;
    GtkTreeView* view = GTK_TREE_VIEW(tree_view);
    for (int row = 0; row < row_count(tree_view); ++row) {
        texts.push_back(cell(view, row, gtk_tree_view_get_column(view, column)));
    }
    return texts;
}

int row_count(GtkWidget* tree_view) {
    return gtk_tree_model_iter_n_children(gtk_tree_view_get_model(GTK_TREE_VIEW(tree_view)),
                                          nullptr);
}

}  // namespace kestrel::testing
