// TransformRecord: the fifteen floats that say how a picture is placed.
#pragma once

#include <array>
#include <cstddef>

#include "brushwork/export.h"

namespace brushwork {

// A point p goes to pivot + rotate(scale * (p - pivot)) + (x, y); then, if any corner is moved, the
// placed box is bent so that its corners (0, 0), (width, 0), (width, height), (0, height) lie that
// much further. A value: hosts hand it across as an array.
struct BRUSHWORK_API TransformRecord {
    float x = 0.0f, y = 0.0f;            // translation, pixels
    float scaleX = 1.0f, scaleY = 1.0f;  // negative mirrors
    float rotation = 0.0f;               // degrees, counter-clockwise with y up
    float pivotX = 0.0f, pivotY = 0.0f;  // pixels
    std::array<float, 8> corners{};      // four moves of a corner, x then y

    static constexpr std::size_t floatCount = 15;

    // Within 0.0001 of doing nothing.
    [[nodiscard]] bool isIdentity() const;
    [[nodiscard]] bool movesCorners() const;
    friend bool operator==(const TransformRecord&, const TransformRecord&) = default;
};
static_assert(sizeof(TransformRecord) == TransformRecord::floatCount * sizeof(float));

}  // namespace brushwork
