#pragma once

#include <string>

#include "workbench/wire/message_log.h"

namespace kestrel {

// Everything about one message, for reading and copying: what it is, the fields of its header, its
// partner, its items with their numbers, its bytes. Large items, many items and many bytes are cut,
// and the text says how much is left out.
std::string details_text(const LoggedMessage& message);

}  // namespace kestrel
