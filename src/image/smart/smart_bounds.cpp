#include "image/smart/smart_bounds.h"

#include "image/smart/smart_page_table.h"

namespace brushwork {

ilTile SmartBounds::clipped(const ilTile& box) {
    ilTile inside = clippedToLimit(box);
    const bool holdsPlane = box.z <= 0 && std::int64_t{box.z} + box.nz > 0;
    inside.z = 0;
    inside.nz = holdsPlane ? 1 : 0;
    return inside;
}

ilTile SmartBounds::toPages(const ilTile& box) {
    if (box.isEmpty()) return box;
    const std::int32_t x = box.x & pageMask;
    const std::int32_t y = box.y & pageMask;
    return flatTile(x, y, ((box.endX() + pageSide - 1) & pageMask) - x,
                    ((box.endY() + pageSide - 1) & pageMask) - y);
}

void SmartBounds::grow(const ilTile& box) {
    if (!box.isEmpty()) content = unionOf(content, box);
    applyFixed();
}

}  // namespace brushwork
