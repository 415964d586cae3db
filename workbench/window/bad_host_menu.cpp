#include "workbench/window/bad_host_menu.h"

#include <string>
#include <utility>

#include "program/translation.h"

namespace kestrel {
namespace {

constexpr const char* kTitle = translatable("Bad host");
constexpr const char* kRowKey = "kestrel-misbehavior";

// Whether the host can do this without a request.
constexpr bool can_be_done_at_once(Misbehavior kind) {
    return kind == Misbehavior::wrong_type || kind == Misbehavior::truncated ||
           kind == Misbehavior::oversize || kind == Misbehavior::hang_up;
}

// The row of a menu widget.
void set_row(GtkWidget* widget, const MisbehaviorRow& row) {
    g_object_set_data(G_OBJECT(widget), kRowKey, const_cast<MisbehaviorRow*>(&row));
}
const MisbehaviorRow& row_of(GtkWidget* widget) {
    return *static_cast<const MisbehaviorRow*>(g_object_get_data(G_OBJECT(widget), kRowKey));
}

}  // namespace

BadHostMenu::BadHostMenu(Events events)
    : events_(std::move(events)), button_(take_reference(gtk_menu_button_new())) {
    label_ = gtk_label_new(translate(kTitle));
    gtk_container_add(GTK_CONTAINER(button_.get()), label_);
    gtk_widget_set_tooltip_text(button_.get(),
                                translate("Test how the page handles a misbehaving host"));
    GtkWidget* popover = gtk_popover_new(button_.get());
    GtkWidget* choices = make_choices();
    gtk_container_add(GTK_CONTAINER(popover), choices);
    gtk_widget_show_all(choices);
    gtk_menu_button_set_popover(GTK_MENU_BUTTON(button_.get()), popover);
    gtk_widget_show_all(button_.get());
}

BadHostMenu::~BadHostMenu() { gtk_widget_destroy(button_.get()); }

GtkWidget* BadHostMenu::make_choices() {
    GtkWidget* grid = gtk_grid_new();
    g_object_set(grid, "margin", 12, "row-spacing", 4, "column-spacing", 18, nullptr);
    GtkRadioButton* group = nullptr;
    int line = 0;
    for (const MisbehaviorRow& row : kMisbehaviors) {
        GtkWidget* choice = gtk_radio_button_new_with_label_from_widget(group, translate(row.name));
        group = GTK_RADIO_BUTTON(choice);
        gtk_widget_set_name(choice, row.name);
        gtk_widget_set_tooltip_text(choice, translate(row.description));
        set_row(choice, row);
        g_signal_connect(
            choice, "toggled", G_CALLBACK(+[](GtkWidget* toggled, BadHostMenu* self) {
                if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(toggled)) != FALSE) {
                    self->choose(row_of(toggled));
                }
            }),
            this);
        gtk_grid_attach(GTK_GRID(grid), choice, 0, line, 1, 1);
        if (can_be_done_at_once(row.kind)) {
            GtkWidget* now = gtk_button_new_with_label(translate("Now"));
            gtk_widget_set_name(now, (std::string(row.name) + " now").c_str());
            gtk_widget_set_tooltip_text(now, translate("Immediately, without a request"));
            set_row(now, row);
            g_signal_connect(now, "clicked", G_CALLBACK(+[](GtkWidget* clicked, BadHostMenu* self) {
                                 self->events_.at_once(row_of(clicked).kind);
                             }),
                             this);
            gtk_grid_attach(GTK_GRID(grid), now, 1, line, 1, 1);
        }
        ++line;
    }
    return grid;
}

void BadHostMenu::choose(const MisbehaviorRow& row) {
    const std::string text = row.kind == Misbehavior::none
                                 ? translate(kTitle)
                                 : std::string(translate(kTitle)) + ": " + translate(row.name);
    gtk_label_set_text(GTK_LABEL(label_), text.c_str());
    GtkStyleContext* style = gtk_widget_get_style_context(button_.get());
    if (row.kind == Misbehavior::none) {
        gtk_style_context_remove_class(style, GTK_STYLE_CLASS_DESTRUCTIVE_ACTION);
    } else {
        gtk_style_context_add_class(style, GTK_STYLE_CLASS_DESTRUCTIVE_ACTION);
    }
    events_.chosen(row.kind);
}

}  // namespace kestrel
