#include "workbench/window/wire_pane.h"

namespace kestrel {
namespace {

constexpr int kListHeight = 480;

}  // namespace

WirePane::WirePane(MessageLog& log)
    : root_(take_reference(gtk_paned_new(GTK_ORIENTATION_VERTICAL))),
      list_(log, [this](const LoggedMessage& message) { details_.show(message); }) {
    gtk_paned_pack1(GTK_PANED(root_.get()), list_.widget(), TRUE, FALSE);
    gtk_paned_pack2(GTK_PANED(root_.get()), details_.widget(), TRUE, FALSE);
    gtk_paned_set_position(GTK_PANED(root_.get()), kListHeight);
    gtk_widget_show_all(root_.get());
}

}  // namespace kestrel
