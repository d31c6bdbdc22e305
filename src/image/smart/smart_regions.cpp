// Region access of ilSmartImage: read, write, fill.
#include "image/cache/page_tests.h"
#include "image/chain/box_difference.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_accessor.h"
#include "image/smart/page_hold.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_rows.h"
#include "image/smart/page_walk.h"

namespace brushwork {
namespace {

// A page as an image, for what needs converting.
std::int32_t readConverted(PageAccessor& accessor, const PagePlace& place, const ilTile& box,
                           void* buffer, const ilTile& frame, const ilImageConfig& config) {
    const PageHold hold(place.page);
    if (!accessor.open(place.page, place.x, place.y, PageAccessor::View::Read, &config))
        return ImageUnusable;
    const std::int32_t result = accessor.read(box, buffer, frame, &config);
    accessor.close();
    return result;
}

}  // namespace

bool ilSmartImage::isTurned(const ilImageConfig* config) const {
    return config && config->coordSpace != 0 && config->coordSpace != coordSpace_;
}

bool ilSmartImage::takesAllChannels(const ilImageConfig* config) const {
    return !config ||
           (!config->remapsChannels() && (config->channels < 1 || config->channels >= channels_));
}

bool ilSmartImage::isPlain(const ilImageConfig* config) const {
    if (!config) return true;
    return takesAllChannels(config) && (config->channels < 1 || config->channels == channels_) &&
           (config->dataType == TypeAny || config->dataType == dataType_) &&
           (config->order == OrderAny || config->order == order_ || channels_ == 1);
}

void ilSmartImage::noteAlpha(const SmartPage& page) {
    if (trackAlpha_ && page.alphaClass == AlphaClass::Mixed) allOpaqueClass_ = false;
}

std::int32_t ilSmartImage::readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                                      const ilImageConfig* config) {
    const ImageLockScope lock;
    if (const auto result = beginOperation()) return result;
    if (!buffer) return ImageUnusable;
    if (isTurned(config)) return readTurned(box, buffer, frame, *config);
    const ilTile wanted = intersection(box, frame);
    if (wanted.isEmpty()) return ImageOk;
    const ilTile inside = SmartBounds::clipped(wanted);
    const bool plain = isPlain(config);
    if (inside != wanted) fillBeyond(wanted, inside, buffer, frame, config);
    std::int32_t result = ImageOk;
    PageAccessor accessor;
    PageWalk walk(pages_, inside, PageWalk::Create::No, PageWalk::Order::Swap);
    if (!walk.isComplete()) result = ImageUnusable;
    while (walk.next()) {
        if (!walk.realize(RealizeMode::Read)) {
            result = ImageUnusable;
            continue;
        }
        const ilTile part = intersection(walk.tile(), inside);
        const PagePlace place{*walk.slot(), walk.x(), walk.y()};
        if (plain)
            readPageRows(place, part, buffer, frame);
        else if (const auto failed = readConverted(accessor, place, part, buffer, frame, *config))
            result = failed;
    }
    return result;
}

std::int32_t ilSmartImage::writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                                       const ilImageConfig* config) {
    const ImageLockScope lock;
    if (const auto result = beginOperation()) return result;
    if (!buffer) return ImageUnusable;
    if (isTurned(config)) return writeTurned(box, buffer, frame, *config);
    const ilTile inside = SmartBounds::clipped(intersection(box, frame));
    if (inside.isEmpty()) return ImageOk;
    const bool plain = isPlain(config);
    noteModified(inside);
    std::int32_t result = ImageOk;
    PageAccessor accessor;
    PageWalk walk(pages_, inside, PageWalk::Create::Yes, PageWalk::Order::Swap);
    if (!walk.isComplete()) result = ImageUnusable;
    while (walk.next()) {
        const ilTile part = intersection(walk.tile(), inside);
        // What converts needs memory of its own: until it has that, the old pixels stay.
        const bool whole = plain && part == walk.tile();
        if (!walk.realize(whole ? RealizeMode::Overwrite : RealizeMode::Write)) {
            result = ImageUnusable;
            continue;
        }
        const PagePlace place{*walk.slot(), walk.x(), walk.y()};
        if (plain) {
            writePageRows(place, part, buffer, frame);
        } else {
            const PageHold hold(place.page);
            std::int32_t written = ImageUnusable;
            if (accessor.open(place.page, place.x, place.y, PageAccessor::View::Write, config))
                written = accessor.write(part, buffer, frame, config);
            accessor.close();
            if (written != ImageOk) result = written;
        }
        notePageWritten(place.page);
        noteAlpha(place.page);
    }
    grow(inside);
    setAltered(NotifyOnly);
    return result;
}

// All channels of part of a page, or all of it.
std::int32_t ilSmartImage::fillPage(SmartPageRef& slot, const ilTile& tile, const ilTile& part,
                                    std::uint32_t value, const ilTile* keepOut) {
    const bool whole = part == tile && (!keepOut || intersection(tile, *keepOut).isEmpty());
    if (whole) {
        if (!makePageSolid(slot, value)) return ImageUnusable;
        slot->alphaClass = alphaClassOfPage(*slot);
    } else {
        // Part of what was never written, and would not change.
        if (slot.get() == pages_.defaultPage().get() && slot->solid == value) return ImageOk;
        if (!realizePage(slot, RealizeMode::Write)) return ImageUnusable;
        ilTile piece;
        for (BoxDifference around(part, keepOut ? *keepOut : ilTile{}); around.next(piece);)
            fillPageRows({*slot, tile.x, tile.y}, piece, value);
        notePageWritten(*slot);
    }
    noteAlpha(*slot);
    return ImageOk;
}

std::int32_t ilSmartImage::fillRegion(const ilTile& box, const ilPixel& pixel,
                                      const ilImageConfig* config, const ilTile* keepOut) {
    const ImageLockScope lock;
    if (const auto result = beginOperation()) return result;
    if (isTurned(config)) return fillTurned(box, pixel, *config, keepOut);
    if (keepOut && keepOut->contains(box)) return ImageOk;
    const ilTile inside = SmartBounds::clipped(box);
    const bool allChannels = takesAllChannels(config);
    const std::uint32_t value = wordOf(pixel);
    if (!inside.isEmpty()) noteModified(inside);
    std::int32_t result = ImageOk;
    bool touched = false;
    bool cleared = false;
    PageAccessor accessor;
    PageWalk walk(pages_, inside, PageWalk::Create::Yes);
    if (!walk.isComplete()) result = ImageUnusable;
    while (walk.next()) {
        const ilTile tile = walk.tile();
        const ilTile part = intersection(tile, inside);
        if (keepOut && keepOut->contains(part)) continue;
        touched = true;
        std::int32_t filled = ImageUnusable;
        if (allChannels) {
            filled = fillPage(walk.slot(), tile, part, value, keepOut);
            const bool whole = part == tile && (!keepOut || intersection(tile, *keepOut).isEmpty());
            cleared = cleared || (whole && value == pages_.solidValue());
        } else if (walk.realize(RealizeMode::Write)) {
            SmartPage& page = *walk.slot();
            const PageHold hold(page);
            if (accessor.open(page, tile.x, tile.y, PageAccessor::View::Write, config))
                filled = accessor.fill(part, pixel, config, keepOut);
            accessor.close();
            notePageWritten(page);
            noteAlpha(page);
        }
        if (filled != ImageOk) result = filled;
    }
    if (touched)
        grow(inside);
    else if (keepOut && box.contains(boxes_.content))
        applyBounds(intersection(boxes_.content, SmartBounds::clipped(*keepOut)));
    if (cleared) needsShrink_ = true;
    setAltered(cleared ? std::uint32_t{AlteredPixels} : std::uint32_t{NotifyOnly});
    return result;
}

}  // namespace brushwork
