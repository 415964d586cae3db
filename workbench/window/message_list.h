// The messages of a log as a person watches them come: a list that follows the newest until it is
// scrolled up, a filter, a pause, and a button that clears it.
#pragma once

#include <gtk/gtk.h>

#include <cstdint>
#include <functional>

#include "workbench/desktop/glib_handles.h"
#include "workbench/wire/message_view.h"

namespace kestrel {

struct MessageColumn;

class MessageList {
  public:
    // Called with the message that has been selected, or whose partner has come meanwhile.
    using OnSelected = std::function<void(const LoggedMessage&)>;

    // GTK must be initialised. The log must outlive the list, which becomes its listener.
    MessageList(MessageLog& log, OnSelected on_selected);
    ~MessageList();
    MessageList(const MessageList&) = delete;
    MessageList& operator=(const MessageList&) = delete;

    // To be put into a window, which must outlive the list. Its parts have names for tests and
    // style sheets: "messages", "filter", "pause", "clear", "count".
    GtkWidget* widget() const { return root_.get(); }

    // Shows what the log has got since; it is called when the log says so.
    void refresh();

    // Selects and shows a row; nothing if it is not in the list.
    void select(std::uint64_t serial);

  private:
    GtkWidget* make_toolbar();
    GtkWidget* make_rows();
    void connect_signals();

    void show_new_list();
    void remove_first(std::size_t count);
    void append_last(std::size_t count);
    void keep_selection();
    void show_count();
    void clear();

    void on_selection();
    void on_scroll();
    bool is_at_end(double value) const;
    void follow();
    void set_cell(const MessageColumn& column, GtkCellRenderer* cell, std::uint64_t serial) const;

    MessageLog& log_;
    MessageView view_;
    OnSelected on_selected_;
    ObjectHandle<GtkWidget> root_;
    GtkTreeView* rows_ = nullptr;
    GtkListStore* model_ = nullptr;
    GtkAdjustment* position_ = nullptr;
    GtkWidget* filter_ = nullptr;
    GtkWidget* pause_ = nullptr;
    GtkWidget* clear_ = nullptr;
    GtkWidget* count_ = nullptr;
    std::uint64_t selected_ = 0;
    std::uint64_t partner_ = 0;  // of the selected row
    bool is_changing_ = false;   // the rows, and not the person
    bool follows_ = true;        // the newest row is kept in sight
    bool is_settling_ = false;   // rows have changed and are not laid out yet
};

}  // namespace kestrel
