// Where an image differs from the one that it was painted over, told by their pages: what was
// painted is in pages of its own.
#pragma once

#include <optional>

#include "image/smart/il_smart_image.h"

namespace brushwork {

// A box around all differing pages, empty for none. Nothing if neither is the other's source, or
// there are too many pages to ask.
[[nodiscard]] std::optional<ilTile> changedBox(ilSmartImage* one, ilSmartImage* other);

}  // namespace brushwork
