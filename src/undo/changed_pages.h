// Where two images differ, told by their pages: what one of them painted is in pages of its own.
#pragma once

#include <optional>

#include "image/smart/il_smart_image.h"

namespace brushwork {

// A box around all differing pages, empty for none. Nothing if it can't be told by pages or there
// are too many to ask.
[[nodiscard]] std::optional<ilTile> changedBox(ilSmartImage* before, ilSmartImage* after);

}  // namespace brushwork
