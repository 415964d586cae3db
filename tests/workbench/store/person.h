// A person in front of the workbench's window. What is done with mouse and keyboard is handed to
// GTK as the display would hand it over; what is waited for, thirty seconds at most, is looked at
// as it is on the screen.
//
// Elements of the page are named by CSS selectors without single quotes, and are scrolled into view
// first. Every function runs the main loop.
#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <string>
#include <vector>

namespace kestrel::testing {

class Person {
  public:
    // At the only window with a page.
    Person();

    // What the script gives in the page, as text.
    std::string read(const std::string& script);

    // Waits until the script gives true in the page.
    bool sees(const std::string& script);

    void click(const std::string& selector);
    void drag(const std::string& from, const std::string& to);

    // Letters, digits and blanks, after a click into the field; until they stand at its end.
    void type(const std::string& field, const std::string& text);

    // Waits for a dialog: its text and the details below it, a line each. "" if none comes.
    std::string wait_for_dialog();
    bool has_dialog() const;

    // The dialog's button of this name, and the dialog's end without any.
    void press(const std::string& label);
    void dismiss();

    // Waits for a menu: its entries. None if it does not come.
    std::vector<std::string> wait_for_menu();
    void choose(const std::string& entry);

    // Clicks the last message of this type in the list.
    void look_at(const std::string& type);

    // Whether the window, as it is seen now, is in this file, as PNG.
    bool save_picture(const std::string& path);

    // The window's part of this name.
    GtkWidget* control(const std::string& name) const;

    // Clicks the button of this name and chooses a file in the dialog that it opens.
    void choose_file(const std::string& button, const std::string& path);

    void close_window();

  private:
    struct Point {
        double x = 0;
        double y = 0;
    };

    Point place_of(const std::string& selector);
    void send_button(GdkEventType type, Point point);
    void send_motion(Point point, bool is_pressed);
    void send_key(GdkEventType type, guint symbol);
    void hand_over(GdkEvent* event);

    WebKitWebView* view_;
    GtkWidget* window_;
};

}  // namespace kestrel::testing
