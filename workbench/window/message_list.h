// A list of a log's messages that follows the newest one until it is scrolled up, with a filter, a
// pause button and a clear button.
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
    // Called when a message is selected, and when the partner of the selected message arrives.
    using OnSelected = std::function<void(const LoggedMessage&)>;

    // GTK must be initialised. The log must outlive the list, which becomes its listener.
    MessageList(MessageLog& log, OnSelected on_selected);
    ~MessageList();
    MessageList(const MessageList&) = delete;
    MessageList& operator=(const MessageList&) = delete;

    // To be added to a window, which must outlive the list. Widget names: "messages", "filter",
    // "pause", "clear", "count".
    GtkWidget* widget() const { return root_.get(); }

    // Shows the changes of the log; called by the log's listener.
    void refresh();

    // Selects a row and scrolls to it; does nothing if it is not in the list.
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
    bool is_updating_ = false;   // signals come from an update, not from the user
    bool follows_ = true;        // keep the newest row visible
    bool needs_layout_ = false;  // rows have changed and are not laid out yet
};

}  // namespace kestrel
