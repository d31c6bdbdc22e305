#include "tiled/edge_modes.h"

#include <algorithm>

namespace brushwork {
namespace {

std::int32_t wrapped(std::int32_t place, std::int32_t min, std::int64_t size) {
    const std::int64_t offset = ((std::int64_t{place} - min) % size + size) % size;
    return static_cast<std::int32_t>(offset + min);
}

}  // namespace

bool edgeOutside(const SampleRect& rect, std::int32_t& x, std::int32_t& y) {
    if (x >= rect.minX && x <= rect.maxX && y >= rect.minY && y <= rect.maxY) return true;
    x = y = -1;
    return false;
}

bool edgeClamp(const SampleRect& rect, std::int32_t& x, std::int32_t& y) {
    x = std::clamp(x, rect.minX, rect.maxX);
    y = std::clamp(y, rect.minY, rect.maxY);
    return true;
}

bool edgeWrap(const SampleRect& rect, std::int32_t& x, std::int32_t& y) {
    x = wrapped(x, rect.minX, rect.width);
    y = wrapped(y, rect.minY, rect.height);
    return true;
}

EdgeMode edgeModeOf(std::int32_t code) {
    switch (code) {
        case EdgeOutside: return &edgeOutside;
        case EdgeClamp: return &edgeClamp;
        case EdgeWrap: return &edgeWrap;
        default: return nullptr;
    }
}

}  // namespace brushwork
