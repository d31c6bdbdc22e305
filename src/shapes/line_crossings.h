// Where lines across a box meet an outline.
//
//     LineCrossings crossings(outline, LineCrossings::Lines::Horizontal, box);
//     for (float y = top; y <= bottom; y += 0.25f) use(crossings.at(y));
//
// One object serves lines in ascending order; for each it looks only at the pieces that come near.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "brushwork/il_tile.h"
#include "shapes/outline_segments.h"

namespace brushwork {

class LineCrossings {
  public:
    enum class Lines { Horizontal, Vertical };

    LineCrossings(const OutlineSegments& outline, Lines lines, const ilTile& box);

    // Places along the line, in pixels from the box's low edge and within it, ascending. If they
    // come out odd, lines up to a hundredth of a pixel off are tried in its stead, and if all fail,
    // the last one's are the answer. Valid until the next call.
    [[nodiscard]] std::span<const float> at(float place);

  private:
    // A piece, seen from lines of this direction.
    struct Edge {
        float start, rise;  // across the lines
        float reciprocal;   // of the rise
        float from, run;    // along the lines
        float low, high;    // of what it spans across them
    };

    void follow(float place);
    void cross(float place);

    std::vector<Edge> edges_;  // by `low`
    std::vector<Edge> active_;
    std::size_t next_ = 0;
    float origin_;  // along the lines
    float last_;    // the last pixel
    std::vector<float> found_;
};

}  // namespace brushwork
