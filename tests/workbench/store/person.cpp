#include "tests/workbench/store/person.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/support/main_loop.h"
#include "tests/webkit/evaluate.h"
#include "tests/workbench/window/widgets.h"
#include "workbench/wire/event_source.h"

namespace kestrel::testing {
namespace {

constexpr int kTypeColumn = 4;
constexpr std::chrono::milliseconds kPollInterval{20};

struct ListFree {
    void operator()(GList* list) const { g_list_free(list); }
};
using List = std::unique_ptr<GList, ListFree>;

// The first of these widgets and their descendants for which `matches` holds, or null.
GtkWidget* find_widget(const List& widgets, const std::function<bool(GtkWidget*)>& matches) {
    for (GList* each = widgets.get(); each != nullptr; each = each->next) {
        auto* widget = static_cast<GtkWidget*>(each->data);
        if (matches(widget)) return widget;
        if (GTK_IS_CONTAINER(widget) == FALSE) continue;
        const List children(gtk_container_get_children(GTK_CONTAINER(widget)));
        if (GtkWidget* found = find_widget(children, matches)) return found;
    }
    return nullptr;
}

GtkWidget* find_on_screen(const std::function<bool(GtkWidget*)>& matches) {
    return find_widget(List(gtk_window_list_toplevels()), [&](GtkWidget* widget) {
        return gtk_widget_get_mapped(widget) != FALSE && matches(widget);
    });
}

GtkWidget* shown_dialog() {
    return find_on_screen([](GtkWidget* widget) { return GTK_IS_MESSAGE_DIALOG(widget) != FALSE; });
}

GtkWidget* shown_menu() {
    return find_on_screen([](GtkWidget* widget) { return GTK_IS_MENU(widget) != FALSE; });
}

std::string text_property(GtkWidget* widget, const char* name) {
    char* text = nullptr;
    g_object_get(widget, name, &text, nullptr);
    const std::unique_ptr<char, decltype(&g_free)> owned(text, g_free);
    return text == nullptr ? "" : text;
}

std::string label_of(GtkWidget* menu_item) {
    const char* label = gtk_menu_item_get_label(GTK_MENU_ITEM(menu_item));
    return label == nullptr ? "" : label;
}

}  // namespace

Person::Person()
    : view_(WEBKIT_WEB_VIEW(
          find_on_screen([](GtkWidget* widget) { return WEBKIT_IS_WEB_VIEW(widget) != FALSE; }))),
      window_(gtk_widget_get_toplevel(GTK_WIDGET(view_))) {}

std::string Person::read(const std::string& script) { return evaluate(view_, script); }

bool Person::sees(const std::string& script) {
    return run_main_loop_until([&] { return read(script) == "true"; });
}

Person::Point Person::position_of(const std::string& selector) {
    const std::string element = "document.querySelector('" + selector + "')";
    if (!sees(element + " !== null")) throw std::runtime_error("the page has no " + selector);
    std::istringstream place(read("(() => { const element = " + element +
                                  "; element.scrollIntoView({block: 'nearest'});"
                                  "  const {left, top, width, height} ="
                                  "      element.getBoundingClientRect();"
                                  "  return `${left + width / 2} ${top + height / 2}`; })()"));
    Point point;
    place >> point.x >> point.y;
    return point;
}

void Person::dispatch(GdkEvent* event) {
    const std::unique_ptr<GdkEvent, decltype(&gdk_event_free)> owned(event, gdk_event_free);
    GdkSeat* seat = gdk_display_get_default_seat(gtk_widget_get_display(window_));
    const bool is_key = event->type == GDK_KEY_PRESS || event->type == GDK_KEY_RELEASE;
    event->any.window =
        GDK_WINDOW(g_object_ref(gtk_widget_get_window(is_key ? window_ : GTK_WIDGET(view_))));
    gdk_event_set_device(event, is_key ? gdk_seat_get_keyboard(seat) : gdk_seat_get_pointer(seat));
    gtk_main_do_event(event);
}

void Person::send_button(GdkEventType type, Point point) {
    GdkEvent* event = gdk_event_new(type);
    event->button.time = GDK_CURRENT_TIME;
    event->button.x = point.x;
    event->button.y = point.y;
    event->button.button = GDK_BUTTON_PRIMARY;
    event->button.state = type == GDK_BUTTON_RELEASE ? GDK_BUTTON1_MASK : 0;
    dispatch(event);
}

void Person::send_motion(Point point, bool is_pressed) {
    GdkEvent* event = gdk_event_new(GDK_MOTION_NOTIFY);
    event->motion.time = GDK_CURRENT_TIME;
    event->motion.x = point.x;
    event->motion.y = point.y;
    event->motion.state = is_pressed ? GDK_BUTTON1_MASK : 0;
    dispatch(event);
}

void Person::click(const std::string& selector) {
    const Point point = position_of(selector);
    send_motion(point, false);
    send_button(GDK_BUTTON_PRESS, point);
    send_button(GDK_BUTTON_RELEASE, point);
}

void Person::drag(const std::string& from, const std::string& to) {
    const Point start = position_of(from);
    const Point end = position_of(to);
    send_motion(start, false);
    send_button(GDK_BUTTON_PRESS, start);
    constexpr int kSteps = 8;
    for (int step = 1; step <= kSteps; ++step) {
        send_motion({start.x + (end.x - start.x) * step / kSteps,
                     start.y + (end.y - start.y) * step / kSteps},
                    true);
    }
    send_button(GDK_BUTTON_RELEASE, end);
}

void Person::send_key(GdkEventType type, guint symbol) {
    GdkEvent* event = gdk_event_new(type);
    event->key.time = GDK_CURRENT_TIME;
    event->key.keyval = symbol;
    GdkKeymapKey* keys = nullptr;
    int count = 0;
    GdkKeymap* keymap = gdk_keymap_get_for_display(gtk_widget_get_display(window_));
    gdk_keymap_get_entries_for_keyval(keymap, symbol, &keys, &count);
    if (count > 0) event->key.hardware_keycode = static_cast<guint16>(keys[0].keycode);
    g_free(keys);
    dispatch(event);
}

void Person::type(const std::string& field, const std::string& text) {
    // Mouse and keyboard events reach the page independently of each other.
    const std::string element = "document.querySelector('" + field + "')";
    click(field);
    if (!sees(element + " === document.activeElement")) {
        throw std::runtime_error("no focus for " + field);
    }
    for (const char character : text) {
        const guint symbol = gdk_unicode_to_keyval(static_cast<unsigned char>(character));
        send_key(GDK_KEY_PRESS, symbol);
        send_key(GDK_KEY_RELEASE, symbol);
    }
    if (!sees(element + ".value.endsWith('" + text + "')")) {
        throw std::runtime_error("the typed text does not arrive in " + field);
    }
}

bool Person::has_dialog() const { return shown_dialog() != nullptr; }

std::string Person::wait_for_dialog() {
    if (!run_main_loop_until([] { return shown_dialog() != nullptr; })) return "";
    return text_property(shown_dialog(), "text") + "\n" +
           text_property(shown_dialog(), "secondary-text");
}

void Person::press(const std::string& label) {
    GtkWidget* button = find_widget(
        List(gtk_container_get_children(GTK_CONTAINER(shown_dialog()))), [&](GtkWidget* widget) {
            return GTK_IS_BUTTON(widget) != FALSE && text_property(widget, "label") == label;
        });
    if (button == nullptr) throw std::runtime_error("the dialog has no button " + label);
    gtk_button_clicked(GTK_BUTTON(button));
}

void Person::dismiss() { gtk_window_close(GTK_WINDOW(shown_dialog())); }

std::vector<std::string> Person::wait_for_menu() {
    std::vector<std::string> entries;
    if (!run_main_loop_until([] { return shown_menu() != nullptr; })) return entries;
    const List items(gtk_container_get_children(GTK_CONTAINER(shown_menu())));
    for (GList* item = items.get(); item != nullptr; item = item->next) {
        entries.push_back(label_of(static_cast<GtkWidget*>(item->data)));
    }
    return entries;
}

void Person::choose(const std::string& entry) {
    GtkWidget* item = find_widget(List(gtk_container_get_children(GTK_CONTAINER(shown_menu()))),
                                  [&](GtkWidget* widget) { return label_of(widget) == entry; });
    if (item == nullptr) throw std::runtime_error("the menu has no entry " + entry);
    gtk_menu_shell_activate_item(GTK_MENU_SHELL(shown_menu()), item, TRUE);
}

void Person::select_message(const std::string& type) {
    GtkWidget* messages = control("messages");
    const std::vector<std::string> types = column(messages, kTypeColumn);
    const auto found = std::find(types.rbegin(), types.rend(), type);
    if (found == types.rend()) throw std::runtime_error("no message is of type " + type);
    GtkTreePath* row =
        gtk_tree_path_new_from_indices(static_cast<int>(types.rend() - found) - 1, -1);
    gtk_tree_view_set_cursor(GTK_TREE_VIEW(messages), row, nullptr, FALSE);
    gtk_tree_path_free(row);
    run_main_loop_until_idle();
}

bool Person::save_screenshot(const std::string& path) {
    // Lay out changed widgets first, as unallocated widgets are not drawn.
    gtk_container_check_resize(GTK_CONTAINER(window_));
    const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, gtk_widget_get_allocated_width(window_),
                                   gtk_widget_get_allocated_height(window_)),
        cairo_surface_destroy);
    const std::unique_ptr<cairo_t, decltype(&cairo_destroy)> canvas(cairo_create(surface.get()),
                                                                    cairo_destroy);
    gtk_widget_draw(window_, canvas.get());
    return cairo_surface_write_to_png(surface.get(), path.c_str()) == CAIRO_STATUS_SUCCESS;
}

GtkWidget* Person::control(const std::string& name) const { return part(window_, name); }

// The dialog runs a nested main loop until it is closed.
void Person::choose_file(const std::string& button, const std::string& path) {
    bool is_named = false;
    const auto answering = EventSource::every(kPollInterval, [&] {
        GtkWidget* dialog = find_on_screen(
            [](GtkWidget* widget) { return GTK_IS_FILE_CHOOSER_DIALOG(widget) != FALSE; });
        if (dialog == nullptr) return;
        GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
        if (!std::exchange(is_named, true)) gtk_file_chooser_set_filename(chooser, path.c_str());
        const std::unique_ptr<char, decltype(&g_free)> chosen(
            gtk_file_chooser_get_filename(chooser), g_free);
        if (chosen && chosen.get() == path) {
            gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_ACCEPT);
        }
    });
    gtk_button_clicked(GTK_BUTTON(control(button)));
}

void Person::close_window() { gtk_window_close(GTK_WINDOW(window_)); }

}  // namespace kestrel::testing
