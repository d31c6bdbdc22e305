// A journal from a file, with its faults told on standard error.
#pragma once

#include <string>

#include "tools/journal_reader.h"

namespace brushwork::tools {

// In place of a path: the journal comes by standard input.
inline constexpr const char* standardInput = "-";

// An exit code. Faults are told as "file:line:column: cause".
[[nodiscard]] int readJournalFile(const std::string& path, Journal& journal);

}  // namespace brushwork::tools
