// A journal from a file, with its faults told on standard error.
#pragma once

#include <string>

#include "tools/journal_reader.h"

namespace brushwork::tools {

// An exit code. Faults are told as "file:line:column: cause".
[[nodiscard]] int readJournalFile(const std::string& path, Journal& journal);

}  // namespace brushwork::tools
