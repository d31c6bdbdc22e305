// The parts of a path.
#pragma once

#include <string_view>

#include "brushwork/filename.h"

namespace brushwork::znOS {

// `path` is normalised with `separator`. The form of a network path ("\\server\share") is always
// written with backslashes.
[[nodiscard]] FilenameParts parseFilename(std::u16string_view path, char16_t separator);

}  // namespace brushwork::znOS
