#include "image/chain/box_difference.h"

#include <algorithm>

namespace brushwork {
namespace {

enum State : std::int32_t { Begin, EndZ, StartZ, EndY, StartY, EndX, StartX, Done };

// Moves what of the span lies at or behind `place` into the piece; false if there is nothing.
bool cutEnd(std::int32_t start, std::int32_t& extent, std::int32_t place, std::int32_t& pieceStart,
            std::int32_t& pieceExtent) {
    const std::int32_t end = start + extent;
    if (place >= end) return false;
    pieceStart = std::max(start, place);
    pieceExtent = end - pieceStart;
    extent -= pieceExtent;
    return true;
}

// Likewise what lies before `place`.
bool cutStart(std::int32_t& start, std::int32_t& extent, std::int32_t place,
              std::int32_t& pieceExtent) {
    if (place <= start) return false;
    const std::int64_t before = std::int64_t{place} - start;
    pieceExtent = static_cast<std::int32_t>(std::min<std::int64_t>(extent, before));
    start += pieceExtent;
    extent -= pieceExtent;
    return true;
}

}  // namespace

BoxDifference::BoxDifference(const ilTile& box, const ilTile& subtrahend)
    : rest_(box), hole_(subtrahend) {}

bool BoxDifference::next(ilTile& piece) {
    if (rest_.isEmpty()) return false;
    if (state_ == Begin) {
        if (hole_.isEmpty()) {
            piece = rest_;
            rest_ = {};
            return true;
        }
        state_ = EndZ;
    }
    for (; state_ < Done; ++state_) {
        ilTile cut = rest_;
        bool found = false;
        switch (state_) {
            case EndZ: found = cutEnd(rest_.z, rest_.nz, hole_.endZ(), cut.z, cut.nz); break;
            case StartZ: found = cutStart(rest_.z, rest_.nz, hole_.z, cut.nz); break;
            case EndY: found = cutEnd(rest_.y, rest_.ny, hole_.endY(), cut.y, cut.ny); break;
            case StartY: found = cutStart(rest_.y, rest_.ny, hole_.y, cut.ny); break;
            case EndX: found = cutEnd(rest_.x, rest_.nx, hole_.endX(), cut.x, cut.nx); break;
            default: found = cutStart(rest_.x, rest_.nx, hole_.x, cut.nx); break;
        }
        if (found) {
            piece = cut;
            return true;
        }
    }
    return false;
}

}  // namespace brushwork
