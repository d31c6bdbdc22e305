#include "fill/coverage_table.h"

#include <algorithm>

namespace brushwork {

CoverageTable::CoverageTable(std::uint8_t tolerance, bool smoothEdges)
    : stop_(std::max<std::uint32_t>(tolerance, 1)) {
    const int t = tolerance;
    const int fall = t + 128 < 256 ? 128 : 255 - t;
    const int soft = std::min(t, 32);
    for (int i = 0; i < 256; ++i) {
        const int sloping = std::clamp((t - i - soft) * 255 / (fall + soft) + 255, 0, 255);
        const int hard = static_cast<std::uint32_t>(i) < stop_ ? 255 : 0;
        table_[static_cast<std::size_t>(i)] =
            static_cast<std::uint8_t>(smoothEdges ? sloping : hard);
    }
    const auto isWhole = [](std::uint8_t coverage) { return coverage == 255; };
    const auto isSome = [](std::uint8_t coverage) { return coverage != 0; };
    endOfWhole_ = static_cast<std::uint32_t>(
        std::find_if_not(table_.begin(), table_.end(), isWhole) - table_.begin());
    startOfNone_ = static_cast<std::uint32_t>(
        std::find_if_not(table_.begin(), table_.end(), isSome) - table_.begin());
}

}  // namespace brushwork
