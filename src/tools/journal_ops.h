// Every operation of a journal, by name, carried out on a session.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "tools/journal_reader.h"
#include "tools/op_row.h"

namespace brushwork::tools {

// In the order in which they are documented.
[[nodiscard]] std::span<const OpRow> allOps();
[[nodiscard]] const OpBook& opBook();

// Carries one out, as a level of undo, and takes in what the engine had to say. An operation marked
// "fails" is done if it fails.
[[nodiscard]] Problem runOperation(JournalSession& session, const Operation& op);

}  // namespace brushwork::tools
