// Copies between ilSmartImage and other images.
#include <cstdlib>

#include "image/smart/il_smart_image.h"
#include "image/smart/page_accessor.h"
#include "image/smart/page_hold.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_walk.h"

namespace brushwork {
namespace {

ilTile shifted(ilTile box, std::int32_t dx, std::int32_t dy) {
    box.x += dx;
    box.y += dy;
    return box;
}

// Corners in the other image further away than this are nobody's pixels.
constexpr std::int64_t mostPlace = std::int64_t{1} << 30;

bool isFailure(std::int32_t result) {
    return result != ImageOk && result != ImageClipped;
}

}  // namespace

bool ilSmartImage::descendsFrom(const ilSmartImage& image) const {
    for (const ilSmartImage* step = smartParent_.get(); step; step = step->smartParent_.get())
        if (step == &image) return true;
    return false;
}

bool ilSmartImage::lookUpPages(const ilTile& box) {
    PageWalk walk(pages_, SmartBounds::clipped(box), PageWalk::Create::No);
    return walk.isComplete();
}

// Colour models don't matter: they never change a value.
bool ilSmartImage::copiesPlainly(const ilTile& box, ilImage& other, std::int32_t oz,
                                 const ilImageConfig* config) {
    return box.z == 0 && box.nz == 1 && oz == 0 && other.channels() == channels_ &&
           other.coordSpace() == coordSpace_ && takesAllChannels(config);
}

std::int32_t ilSmartImage::copyRegion(const ilTile& box, ilImage& other, std::int32_t ox,
                                      std::int32_t oy, std::int32_t oz, const ilImageConfig* config,
                                      CopyDirection direction) {
    const ImageLockScope lock;
    const Ref<ilImage> held(&other);
    if (const auto result = beginOperation()) return result;
    const ilTile inside = SmartBounds::clipped(box);
    ilTile placed = inside;  // of other planes only the general way knows
    placed.z = box.z;
    placed.nz = box.nz;
    if (placed.isEmpty()) return ImageOk;
    const std::int64_t farX = std::int64_t{inside.x} + ox - box.x;
    const std::int64_t farY = std::int64_t{inside.y} + oy - box.y;
    if (std::abs(farX) > mostPlace || std::abs(farY) > mostPlace) return ImageUnusable;
    const auto x = static_cast<std::int32_t>(farX);
    const auto y = static_cast<std::int32_t>(farY);
    const bool fromOther = direction == CopyDirection::FromOther;
    if (&other == this) {
        // Overlapping boxes: from a picture of what was there.
        const Ref<ilSmartImage> before = clone();
        if (!before) return ImageUnusable;
        return fromOther ? copyRegion(inside, *before, x, y, oz, config, direction)
                         : copyRegion(flatTile(x, y, inside.nx, inside.ny), *before, inside.x,
                                      inside.y, box.z, config, CopyDirection::FromOther);
    }
    ilSmartImage* const smart = from(&other);
    const std::int32_t shiftX = x - inside.x;
    const std::int32_t shiftY = y - inside.y;
    // A target's pages must not show through an heir that is still being read from. What has no
    // place in the target isn't read.
    const ilTile there = SmartBounds::clipped(shifted(inside, shiftX, shiftY));
    bool looked = true;
    if (smart && fromOther && smart->descendsFrom(*this)) looked = smart->lookUpPages(there);
    if (smart && !fromOther && descendsFrom(*smart))
        looked = lookUpPages(shifted(there, -shiftX, -shiftY));
    if (!looked) return ImageUnusable;
    if (!copiesPlainly(box, other, oz, config))
        return copyInPieces(placed, other, shiftX, shiftY, oz - box.z, config, direction);
    if (fromOther) return copyIn(inside, other, shiftX, shiftY);
    if (!smart) return copyOut(inside, other, shiftX, shiftY);
    return smart->copyRegion(flatTile(x, y, inside.nx, inside.ny), *this, inside.x, inside.y, 0,
                             nullptr, CopyDirection::FromOther);
}

// The general way keeps a buffer of what it copies, so it goes page by page.
std::int32_t ilSmartImage::copyInPieces(const ilTile& box, ilImage& other, std::int32_t dx,
                                        std::int32_t dy, std::int32_t dz,
                                        const ilImageConfig* config, CopyDirection direction) {
    if (other.coordSpace() != coordSpace_)
        return ilSIDImage::copyRegion(box, other, box.x + dx, box.y + dy, box.z + dz, config,
                                      direction);
    // Named as this image's own, the model doesn't hand the copy to the other image, which would
    // cut the box to its own limit.
    ilImageConfig mapped = config ? *config : ilImageConfig();
    mapped.colorModel = colorModel_;
    std::int32_t result = ImageOk;
    for (std::int32_t y = box.y & pageMask; y < box.endY(); y += pageSide) {
        for (std::int32_t x = box.x & pageMask; x < box.endX(); x += pageSide) {
            const ilTile part = intersection({x, y, box.z, pageSide, pageSide, box.nz}, box);
            const std::int32_t copied = ilSIDImage::copyRegion(
                part, other, part.x + dx, part.y + dy, part.z + dz, &mapped, direction);
            if (isFailure(copied)) result = copied;
        }
    }
    return result;
}

// False: the pixels are to be copied.
bool ilSmartImage::sharePage(SmartPageRef& slot, ilSmartImage& source, std::int32_t x,
                             std::int32_t y) {
    const SmartPageRef* const found = source.pages_.pageRef(x, y, false);
    if (!found) return false;
    const SmartPageRef page = *found;
    if (page->locked != 0) return false;  // who holds it may write to it in place
    if (slot.get() != page.get()) slot.assign(page.get(), ReleaseReason::SlotReplaced);
    noteAlpha(*page);
    return true;
}

std::int32_t ilSmartImage::copyIn(const ilTile& box, ilImage& other, std::int32_t dx,
                                  std::int32_t dy) {
    ilSmartImage* const source = from(&other);
    const bool aligned = (dx & ~pageMask) == 0 && (dy & ~pageMask) == 0;
    const ilImageConfig own(TypeUChar, OrderInterleaved, channels_);
    if (source && source->beginOperation() != ImageOk) return source->status();
    noteModified(box);
    std::int32_t result = ImageOk;
    PageWalk walk(pages_, box, PageWalk::Create::Yes);
    if (!walk.isComplete()) result = ImageUnusable;
    while (walk.next()) {
        const ilTile tile = walk.tile();
        const ilTile part = intersection(tile, box);
        const bool whole = part == tile;
        SmartPageRef& slot = walk.slot();
        if (source && aligned && whole && sharePage(slot, *source, tile.x + dx, tile.y + dy))
            continue;
        // Another holder keeps what stood there, in case that it can't be read.
        const SmartPageRef former = whole && slot->locked == 0 ? slot : SmartPageRef();
        if (!walk.realize(whole ? RealizeMode::Overwrite : RealizeMode::Write)) {
            result = ImageUnusable;
            continue;
        }
        SmartPage& page = *slot;
        const PageHold hold(page);
        const std::int32_t read =
            other.readRegion(shifted(part, dx, dy), page.data, shifted(tile, dx, dy), &own);
        if (isFailure(read)) {
            result = read;
            if (former) {
                slot.assign(former.get(), ReleaseReason::SlotReplaced);
                continue;
            }
        }
        notePageWritten(page);
        if (source && whole && channels_ == 4) {
            const AlphaClass known = source->alphaClassOf(shifted(part, dx, dy), false);
            if (known != AlphaClass::NoPage) page.alphaClass = known;
        }
        noteAlpha(page);
    }
    grow(box);
    setAltered(NotifyOnly);
    return result;
}

std::int32_t ilSmartImage::copyOut(const ilTile& box, ilImage& other, std::int32_t dx,
                                   std::int32_t dy) {
    const ilImageConfig own(TypeUChar, OrderInterleaved, channels_);
    const ilTile held = intersection(box, SmartBounds::toPages(boxes_.content));
    const ilTile there = shifted(held, dx, dy);
    std::int32_t result = ImageOk;
    if (held != box) {
        const ilPixel fill = pixelOfWord(channels_, pages_.solidValue());
        result = other.fillRegion(shifted(box, dx, dy), fill, nullptr,
                                  held.isEmpty() ? nullptr : &there);
        if (result == ImageNoFill)
            return copyInPieces(box, other, dx, dy, 0, nullptr, CopyDirection::ToOther);
    }
    if (held.isEmpty()) return result;
    PageWalk walk(pages_, held, PageWalk::Create::No, PageWalk::Order::Swap);
    if (!walk.isComplete()) result = ImageUnusable;
    while (walk.next()) {
        if (!walk.realize(RealizeMode::Read)) {
            result = ImageUnusable;
            continue;
        }
        const ilTile part = shifted(intersection(walk.tile(), held), dx, dy);
        SmartPage& page = *walk.slot();
        const PageHold hold(page);
        std::int32_t given = ImageNoFill;
        if (page.isSolid()) given = other.fillRegion(part, pixelOfWord(channels_, page.solid));
        if (given == ImageNoFill) {
            PageAccessor accessor;
            const bool opened = accessor.open(page, walk.x(), walk.y(), PageAccessor::View::Write);
            auto* const image = opened ? static_cast<ilSPMemoryImg*>(accessor.image()) : nullptr;
            given = image
                        ? other.writeRegion(part, image->data(), shifted(walk.tile(), dx, dy), &own)
                        : std::int32_t{ImageUnusable};
        }
        if (given != ImageOk) result = given;
    }
    return result;
}

}  // namespace brushwork
