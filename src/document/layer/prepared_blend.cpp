#include "document/layer/prepared_blend.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "blending/modes/blender_registry.h"
#include "brushwork/blend_mode_table.h"
#include "document/layer/layer.h"
#include "document/layer/layer_boxes.h"

namespace brushwork {
namespace {

constexpr std::int32_t side = pageSide;
constexpr std::int32_t cellSide = 16, cellsAcross = side / cellSide;

std::shared_ptr<npc::GenericBlender> blenderOf(std::int32_t mode, float opacity, ilImage* source,
                                               std::int32_t x, std::int32_t y) {
    auto blender = npc::createBlender(mode);
    if (!blender) return blender;
    blender->setSource(source, x, y, false);
    blender->setOpacity(opacity);
    return blender;
}

bool isPage(const ilTile& box) {
    return ((box.x | box.y) & (side - 1)) == 0 && box.nx == side && box.ny == side;
}

// The boxes around what is filled in each row of cells, those of equal rows as one; in the page.
template <class Visit>
void eachFilledBox(std::uint64_t cells, const Visit& visit) {
    for (std::int32_t row = 0; row < cellsAcross;) {
        const auto bits = static_cast<std::uint8_t>(cells >> row * cellsAcross);
        const std::int32_t from = row;
        const std::int32_t left = std::countr_zero(bits);
        const std::int32_t right = cellsAcross - std::countl_zero(bits);
        for (; row < cellsAcross; ++row) {
            const auto next = static_cast<std::uint8_t>(cells >> row * cellsAcross);
            if (std::countr_zero(next) != left || cellsAcross - std::countl_zero(next) != right)
                break;
        }
        if (bits == 0) continue;
        visit(flatTile(left * cellSide, from * cellSide, (right - left) * cellSide,
                       (row - from) * cellSide));
    }
}

}  // namespace

bool keepsUnderNothing(std::int32_t mode) {
    return mode < static_cast<std::int32_t>(BlendModeId::Replace);
}

ilSmartImage* plainColor(Layer& layer) {
    layer.prepareForRender(nullptr, false);
    layer.refreshClip();
    ilSmartImage* const color = layer.smartColor();
    const bool isPlain = color && color->channels() == 4 && !layer.wet().image &&
                         layer.role() == LayerRole::Paint && layer.isEmptyMask();
    return isPlain ? color : nullptr;
}

PreparedBlend::PreparedBlend(const Placed& source, std::int32_t mode, float opacity)
    : source_(source),
      mode_(mode),
      opacity_(opacity),
      blender_(blenderOf(mode, opacity, source.image, source.x, source.y)),
      skipsClear_(keepsUnderNothing(mode)) {}

npc::GenericBlender& PreparedBlend::constantBlender() {
    if (!constantBlender_) constantBlender_ = blenderOf(mode_, opacity_, nullptr, 0, 0);
    return *constantBlender_;
}

ilTile PreparedBlend::inSource(const ilTile& part) const {
    return moved(part, -source_.x, -source_.y);
}

// What is known of a page spares a look at it, and one pixel spares most others a look at all of
// them; those that pass keep the answer.
bool PreparedBlend::hides(const ilTile& part) {
    if (!blender_ || mode_ != static_cast<std::int32_t>(BlendModeId::Normal) || !(opacity_ >= 1.0f))
        return false;
    const ilTile own = inSource(part);
    if (~source_.image->lookAtPage(own.x, own.y).filledCells != 0) return false;
    return source_.image->getPixel(own.x, own.y) >> 24 == 255 &&
           source_.image->alphaClassOf(own, true) == AlphaClass::Opaque;
}

bool PreparedBlend::putOn(npc::BlendPile& pile, const ilTile& part) {
    if (!blender_ || part.isEmpty()) return false;
    // The source may stand far off.
    const std::int64_t fromX = std::int64_t{part.x} - source_.x;
    const std::int64_t fromY = std::int64_t{part.y} - source_.y;
    bool drawn = false;
    for (std::int64_t y = fromY & -side; y < fromY + part.ny; y += side)
        for (std::int64_t x = fromX & -side; x < fromX + part.nx; x += side)
            drawn = putPage(pile, x, y, part) || drawn;
    return drawn;
}

// Beyond the limit there is nothing but the fill.
bool PreparedBlend::putPage(npc::BlendPile& pile, std::int64_t x, std::int64_t y,
                            const ilTile& part) {
    const auto inLimit = [](std::int64_t place) {
        return place >= -coordinateLimit && place < coordinateLimit;
    };
    const auto pageX = static_cast<std::int32_t>(x + source_.x);
    const auto pageY = static_cast<std::int32_t>(y + source_.y);
    const ilTile box = intersection(part, flatTile(pageX, pageY, side, side));
    ilSmartImage::PageLook look;
    if (inLimit(x) && inLimit(y)) {
        look =
            source_.image->lookAtPage(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y));
    } else {
        look.isSolid = true;
        look.solid = source_.image->pages().solidValue();
    }
    if (look.isSolid) {
        if (skipsClear_ && look.solid >> 24 == 0) return false;
        pile.addConstant(constantBlender(), look.solid, box);
        return true;
    }
    if (!skipsClear_) {
        pile.add(*blender_, box);
        return true;
    }
    bool drawn = false;
    eachFilledBox(look.filledCells, [&](const ilTile& filled) {
        const ilTile piece = intersection(box, moved(filled, pageX, pageY));
        if (piece.isEmpty()) return;
        pile.add(*blender_, piece);
        drawn = true;
    });
    return drawn;
}

bool PreparedBlend::shareWith(ilImage& image, const ilTile& part) {
    ilSmartImage* const target = ilSmartImage::from(&image);
    const ilTile from = inSource(part);
    if (!target || target->channels() != source_.image->channels() || !isPage(from) ||
        !isPage(part))
        return false;
    return target->copyRegion(part, *source_.image, from.x, from.y, 0, nullptr,
                              CopyDirection::FromOther) == ImageOk;
}

}  // namespace brushwork
