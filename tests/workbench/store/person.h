// Simulates a user of the workbench's window with synthetic GDK events. Waiting functions check the
// visible widgets and time out after thirty seconds.
//
// CSS selectors must not contain single quotes; elements are scrolled into view first. Every
// function runs the main loop.
#pragma once

#include <gtk/gtk.h>
#include <webkit2/webkit2.h>

#include <string>
#include <vector>

namespace kestrel::testing {

class Person {
  public:
    // Uses the only window with a page.
    Person();

    // Evaluates a script in the page; returns the result as text.
    std::string read(const std::string& script);

    // Waits until the script evaluates to true in the page.
    bool sees(const std::string& script);

    void click(const std::string& selector);
    void drag(const std::string& from, const std::string& to);

    // Clicks the field, types letters, digits and blanks, and waits until the field ends with them.
    void type(const std::string& field, const std::string& text);

    // Waits for a dialog; returns its text and details, one per line, or "".
    std::string wait_for_dialog();
    bool has_dialog() const;

    // Presses the dialog's button with this label; closes the dialog without a button.
    void press(const std::string& label);
    void dismiss();

    // Waits for a menu; returns its entries.
    std::vector<std::string> wait_for_menu();
    void choose(const std::string& entry);

    // Selects the last message of this type in the list.
    void select_message(const std::string& type);

    // Saves a screenshot of the window as PNG; false on failure.
    bool save_screenshot(const std::string& path);

    // The window's widget with this name.
    GtkWidget* control(const std::string& name) const;

    // Clicks the button with this name and chooses a file in the dialog that opens.
    void choose_file(const std::string& button, const std::string& path);

    void close_window();

  private:
    struct Point {
        double x = 0;
        double y = 0;
    };

    Point position_of(const std::string& selector);
    void send_button(GdkEventType type, Point point);
    void send_motion(Point point, bool is_pressed);
    void send_key(GdkEventType type, guint symbol);
    void dispatch(GdkEvent* event);

    WebKitWebView* view_;
    GtkWidget* window_;
};

}  // namespace kestrel::testing
