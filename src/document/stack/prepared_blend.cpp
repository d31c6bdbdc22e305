#include "document/stack/prepared_blend.h"

#include "brushwork/blend_mode_table.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

constexpr std::int32_t side = pageSide;

bool isPage(const ilTile& box) {
    return ((box.x | box.y) & (side - 1)) == 0 && box.nx == side && box.ny == side;
}

}  // namespace

PreparedBlend::PreparedBlend(const BlendRun& run, ilSmartImage& source)
    : run_(run),
      source_(source),
      blender_(blenderOf(run)),
      skipsClear_(keepsUnderNothing(run.mode)) {}

ilTile PreparedBlend::inSource(const ilTile& part) const {
    return moved(part, -run_.sourceX, -run_.sourceY);
}

// A look at one pixel spares most pages a look at all of them; those that pass keep the answer.
bool PreparedBlend::hides(const ilTile& part) {
    if (!blender_ || run_.mode != static_cast<std::int32_t>(BlendModeId::Normal) ||
        !(run_.opacity >= 1.0f))
        return false;
    const ilTile own = inSource(part);
    return source_.getPixel(own.x, own.y) >> 24 == 255 &&
           source_.alphaClassOf(own, true) == AlphaClass::Opaque;
}

void PreparedBlend::add(const ilTile& part) {
    if (!skipsClear_ || !isKnownClear(source_, inSource(part))) parts_.insert(part);
}

bool PreparedBlend::share(const ilTile& part) {
    ilSmartImage* const target = ilSmartImage::from(run_.target);
    const ilTile from = inSource(part);
    const ilTile to = moved(part, -run_.targetX, -run_.targetY);
    if (!target || target->channels() != source_.channels() || !isPage(from) || !isPage(to))
        return false;
    shared_ = target->copyRegion(to, source_, from.x, from.y, 0, nullptr,
                                 CopyDirection::FromOther) == ImageOk;
    return shared_;
}

bool PreparedBlend::run() {
    const bool drawn = !parts_.empty() && blender_;
    if (drawn) {
        blender_->run(parts_);
        noteBlendRun();
    }
    parts_.clear();
    return std::exchange(shared_, false) || drawn;
}

}  // namespace brushwork
