// Temporary names and the sweep of stale temporary files: members of znOS::Filename, and the
// decisions behind them.
#pragma once

#include <cstdint>
#include <string_view>

#include "brushwork/filename.h"

namespace brushwork::znOS {

// A temporary file is stale when it wasn't modified for more seconds than this.
inline constexpr std::int64_t staleAfterSeconds = 604800;

// Whether a file of that name is one of the temporary files that the sweep removes. With case.
[[nodiscard]] bool isSweptName(std::u16string_view name);

// Sweeps the one directory and, if it exists and is another, the second. Answers how many files
// went. `common` is written with slashes; with backslashes it is the same one.
int sweepDirectories(const znString::IString& temporary, const znString::IString& common);

}  // namespace brushwork::znOS
