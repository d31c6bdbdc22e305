// StackView: how the canvas is seen.
#pragma once

#include <array>
#include <vector>

#include "brushwork/il_tile.h"
#include "brushwork/transform_record.h"

namespace brushwork {

struct ViewPoint {
    float x = 0.0f, y = 0.0f;
};

struct StackView {
    TransformRecord record;
    bool valid = false;
    bool changed = false;  // view or bounds; a full composite is due
    bool sizeChanged = false;

    // From view to document coordinates and back. Without a valid record they are the same.
    [[nodiscard]] ViewPoint toDocument(ViewPoint view) const;
    [[nodiscard]] ViewPoint toView(ViewPoint document) const;
};

// A convex polygon cut to a box (Sutherland and Hodgman, Reentrant polygon clipping, 1974).
[[nodiscard]] std::vector<ViewPoint> clipPolygon(const std::vector<ViewPoint>& polygon,
                                                 const ilTile& box);

}  // namespace brushwork
