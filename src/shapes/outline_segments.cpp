#include "shapes/outline_segments.h"

#include <utility>

namespace brushwork {

OutlineSegments::OutlineSegments(std::vector<HostSegment> pieces) : pieces_(std::move(pieces)) {
    reciprocals_.reserve(pieces_.size());
    for (const HostSegment& piece : pieces_)
        reciprocals_.push_back({1.0f / piece.dx, 1.0f / piece.dy});
}

}  // namespace brushwork
