// Filters by their codes.
#pragma once

#include "tiled/resample_filter.h"

namespace brushwork {

// Codes of FilterCode and EdgeModeCode. Null for FilterBase and for any other code; the caller then
// gives the operation up.
[[nodiscard]] Ref<ResampleFilter> makeFilter(std::int32_t type, std::int32_t edgeMode);

}  // namespace brushwork
