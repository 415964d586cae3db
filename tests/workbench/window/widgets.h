// Access to windows and widgets for tests.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace kestrel::testing {

// Shows a widget in a window for its lifetime.
class ShownWidget {
  public:
    explicit ShownWidget(GtkWidget* widget);
    ~ShownWidget();
    ShownWidget(const ShownWidget&) = delete;
    ShownWidget& operator=(const ShownWidget&) = delete;

  private:
    GtkWidget* window_;
};

// The descendant of `root` with this widget name; aborts the program if there is none.
GtkWidget* part(GtkWidget* root, const std::string& name);

void type_into(GtkWidget* entry_or_text_view, const std::string& text);

std::string text_in(GtkWidget* label_or_text_view);

// The texts of a row of a tree view as drawn.
std::vector<std::string> cells(GtkWidget* tree_view, int row);

// The texts of a column of all rows.
std::vector<std::string> column(GtkWidget* tree_view, int column);

int row_count(GtkWidget* tree_view);

}  // namespace kestrel::testing
