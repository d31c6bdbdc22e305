// What the engine takes of a shape's curves: their extent, the closed outline as straight pieces,
// and the points that a stroke runs through.
//
// Everything goes through the curve and shape roles of the host table.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "brushwork/host_call_table.h"
#include "brushwork/stamp_point.h"

namespace brushwork {

// In layer pixels; finite, with low never above high.
struct OutlineExtent {
    double lowX = 0.0, lowY = 0.0;
    double highX = 0.0, highY = 0.0;

    [[nodiscard]] OutlineExtent grown(double margin) const {
        return {lowX - margin, lowY - margin, highX + margin, highY + margin};
    }
};

[[nodiscard]] OutlineExtent unionOf(const OutlineExtent& a, const OutlineExtent& b);

// No point of a curve is further from its pieces, in pixels.
inline constexpr double outlineTolerance = 0.05;

// In the host's order. Empty without a shape.
[[nodiscard]] std::vector<HostCurve> shapeCurves(HostShape shape);

// Around all of the curves. Nothing if none has an extent.
[[nodiscard]] std::optional<OutlineExtent> outlineExtent(std::span<const HostCurve> curves);

// Consecutive pieces that join, each where the one before it ends.
using OutlineChain = std::span<const HostSegment>;
[[nodiscard]] std::vector<OutlineChain> outlineChains(std::span<const HostSegment> pieces);

// The pieces of one curve as the host cuts it.
[[nodiscard]] std::vector<HostSegment> curvePieces(HostCurve curve);

// The pieces of all curves; one more piece closes each chain that ends elsewhere than it began.
// Sample lines meet each of the chains once where it passes them (passSampleLinesOnce).
[[nodiscard]] std::vector<HostSegment> closedOutline(std::span<const HostCurve> curves);

// Where a chain begins and where each of its pieces ends, at full pressure.
[[nodiscard]] std::vector<StrokePointData> chainPoints(OutlineChain chain);

}  // namespace brushwork
