#include "shapes/host_outline.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "foundation/host/host_calls.h"
#include "shapes/sample_lines.h"

namespace brushwork {
namespace {

// A host whose list of curves doesn't end must not hold the engine up.
constexpr std::int32_t mostCurves = 65536;

// What counts as the same place, in pixels: ends are sums of floats.
constexpr float joined = 0.001f;

bool isFinite(const HostSegment& piece) {
    return std::isfinite(piece.x) && std::isfinite(piece.y) && std::isfinite(piece.dx) &&
           std::isfinite(piece.dy);
}

bool meet(const HostSegment& before, const HostSegment& after) {
    return std::fabs(before.x + before.dx - after.x) <= joined &&
           std::fabs(before.y + before.dy - after.y) <= joined;
}

}  // namespace

OutlineExtent unionOf(const OutlineExtent& a, const OutlineExtent& b) {
    return {std::min(a.lowX, b.lowX), std::min(a.lowY, b.lowY), std::max(a.highX, b.highX),
            std::max(a.highY, b.highY)};
}

std::vector<HostCurve> shapeCurves(HostShape shape) {
    std::vector<HostCurve> curves;
    for (std::int32_t index = 0; index < mostCurves; ++index) {
        const HostCurve curve = hostShapeCurve(shape, index);
        if (!curve) break;
        curves.push_back(curve);
    }
    return curves;
}

std::optional<OutlineExtent> outlineExtent(std::span<const HostCurve> curves) {
    std::optional<OutlineExtent> extent;
    for (const HostCurve curve : curves) {
        double low[2] = {}, high[2] = {};
        if (!hostCurveBounds(curve, low, high)) continue;
        const bool sound = std::isfinite(low[0]) && std::isfinite(low[1]) &&
                           std::isfinite(high[0]) && std::isfinite(high[1]);
        if (!sound || low[0] > high[0] || low[1] > high[1]) continue;
        const OutlineExtent own{low[0], low[1], high[0], high[1]};
        extent = extent ? unionOf(*extent, own) : own;
    }
    return extent;
}

std::vector<OutlineChain> outlineChains(std::span<const HostSegment> pieces) {
    std::vector<OutlineChain> chains;
    std::size_t begin = 0;
    for (std::size_t i = 1; i <= pieces.size(); ++i) {
        if (i < pieces.size() && meet(pieces[i - 1], pieces[i])) continue;
        chains.push_back(pieces.subspan(begin, i - begin));
        begin = i;
    }
    return chains;
}

std::vector<HostSegment> curvePieces(HostCurve curve) {
    std::vector<HostSegment> pieces = hostTessellateCurve(curve, outlineTolerance);
    std::erase_if(pieces, [](const HostSegment& piece) { return !isFinite(piece); });
    return pieces;
}

std::vector<HostSegment> closedOutline(std::span<const HostCurve> curves) {
    std::vector<HostSegment> outline;
    for (const HostCurve curve : curves) {
        const std::vector<HostSegment> pieces = curvePieces(curve);
        for (const OutlineChain chain : outlineChains(pieces)) {
            outline.insert(outline.end(), chain.begin(), chain.end());
            const HostSegment& first = chain.front();
            const HostSegment& last = chain.back();
            std::size_t count = chain.size();
            if (!meet(last, first)) {
                const float x = last.x + last.dx, y = last.y + last.dy;
                outline.push_back({x, y, first.x - x, first.y - y});
                ++count;
            }
            passSampleLinesOnce(std::span(outline).last(count));
        }
    }
    return outline;
}

std::vector<StrokePointData> chainPoints(OutlineChain chain) {
    std::vector<StrokePointData> points;
    points.reserve(chain.size() + 1);
    if (!chain.empty()) points.emplace_back(chain.front().x, chain.front().y, 1.0f);
    for (const HostSegment& piece : chain)
        points.emplace_back(piece.x + piece.dx, piece.y + piece.dy, 1.0f);
    return points;
}

}  // namespace brushwork
