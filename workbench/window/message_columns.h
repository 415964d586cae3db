// The columns of a message list.
#pragma once

#include <gtk/gtk.h>

#include <array>
#include <string>

#include "program/translation.h"
#include "workbench/wire/row_text.h"

namespace kestrel {

struct MessageColumn {
    const char* title;
    const char* widest;  // determines the width; null for the column that takes the remaining space
    float alignment;     // 0 is left, 1 is right
    std::string (*text)(const LoggedMessage& message);
};

std::string serial_cell(const LoggedMessage& message);
std::string time_cell(const LoggedMessage& message);
std::string direction_cell(const LoggedMessage& message);
std::string process_cell(const LoggedMessage& message);
std::string type_cell(const LoggedMessage& message);
std::string items_cell(const LoggedMessage& message);  // or the note
std::string size_cell(const LoggedMessage& message);

inline constexpr std::array<MessageColumn, 8> kMessageColumns = {{
    {"#", "100000", 1, serial_cell},
    {translatable("Time"), "00:00:00.000", 0, time_cell},
    {"", "\u2192", 0.5, direction_cell},
    {translatable("Process"), "0000000", 1, process_cell},
    {translatable("Type"), "23 getUserDisplayName", 0, type_cell},
    {translatable("Items"), nullptr, 0, items_cell},
    {translatable("Bytes"), "5000016", 1, size_cell},
    {translatable("Pair"), "\u21c4 #10000, 99.9 ms", 0, partner_text},
}};

// Adds the columns to a tree view. `set_cell` is called for each cell to be drawn and sets the
// renderer's properties.
using SetCell = void (*)(void* data, const MessageColumn& column, GtkCellRenderer* cell,
                         GtkTreeModel* model, GtkTreeIter* row);
void add_message_columns(GtkTreeView* view, SetCell set_cell, void* data);

}  // namespace kestrel
