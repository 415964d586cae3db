#pragma once

#include <string>

#include "workbench/wire/message_log.h"

namespace kestrel {

// All details of one message as text: summary, partner, header fields, numbered items, hex dump.
// Large items, many items and many bytes are truncated, and the text says by how much.
std::string details_text(const LoggedMessage& message);

}  // namespace kestrel
