// Journals: what was done to documents, one operation a line.
//
//     {"journal": "brushwork", "version": 1}
//     {"op": "canvas", "width": 800, "height": 600}
//     {"op": "layer", "name": "ink"}
//     {"op": "stroke", "points": [[100, 100], [300, 250, 0.5]]}
//
// Lines of JSON; empty lines are skipped. All lines are checked before the first is carried out:
// syntax, fields, values, and that names are given before they are used.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/operation.h"

namespace brushwork::tools {

// Version 2 brought frames. Older journals mean what they meant.
inline constexpr std::int32_t journalVersion = 2;

struct Journal {
    std::int32_t version = journalVersion;
    std::vector<Operation> operations;
    std::optional<std::uint64_t> seed;  // of the random sequence, as the first line gave it
};

struct JournalFault {
    std::int32_t line = 0;  // both from 1; 0: the file as a whole
    std::size_t column = 0;
    std::string cause;
};

// Null for an unknown name.
using FindOp = std::function<const OpRules*(std::string_view name)>;
struct OpBook {
    FindOp find;
    std::vector<std::string> names;
};

// Faults of all lines, at most mostFaults; the journal counts if there are none.
inline constexpr std::size_t mostFaults = 20;
[[nodiscard]] std::vector<JournalFault> readJournal(std::string_view text, const OpBook& book,
                                                    Journal& journal);

}  // namespace brushwork::tools
