#include "image/smart/smart_alpha.h"

#include <algorithm>

#include "image/cache/page_tests.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_rows.h"
#include "image/smart/page_walk.h"

namespace brushwork {
namespace {

constexpr std::size_t pixelBytes = 4;
constexpr std::uint32_t slightExcess = 3;

std::uint8_t largestColour(const std::uint8_t* pixel) {
    return std::max({pixel[0], pixel[1], pixel[2]});
}

std::uint8_t multiplied(std::uint8_t colour, std::uint8_t alpha) {
    return static_cast<std::uint8_t>(static_cast<float>(colour) *
                                     (static_cast<float>(alpha) / 255.0f));
}

void repairPixel(std::uint8_t* pixel, AlphaRepair repair) {
    switch (repair) {
        case AlphaRepair::Opaque: pixel[3] = 255; break;
        case AlphaRepair::Raise: pixel[3] = std::max(pixel[3], largestColour(pixel)); break;
        case AlphaRepair::Multiply:
            for (int n = 0; n < 3; ++n) pixel[n] = multiplied(pixel[n], pixel[3]);
            break;
        default: break;
    }
}

std::uint32_t repairedWord(std::uint32_t word, AlphaRepair repair) {
    std::uint8_t bytes[pixelBytes];
    for (unsigned n = 0; n < 4; ++n) bytes[n] = static_cast<std::uint8_t>(word >> 8 * n);
    repairPixel(bytes, repair);
    std::uint32_t result = 0;
    for (unsigned n = 0; n < 4; ++n) result |= std::uint32_t{bytes[n]} << 8 * n;
    return result;
}

// Pages that a repair leaves as they are stay shared.
bool wouldChange(const PagePlace& place, const ilTile& box, AlphaRepair repair) {
    if (place.page.isSolid()) return repairedWord(place.page.solid, repair) != place.page.solid;
    for (std::int32_t y = box.y; y < box.endY(); ++y) {
        const std::uint8_t* pixel = place.at(box.x, y);
        for (std::int32_t n = 0; n < box.nx; ++n, pixel += pixelBytes) {
            std::uint8_t repaired[pixelBytes];
            std::copy_n(pixel, pixelBytes, repaired);
            repairPixel(repaired, repair);
            if (!std::equal(repaired, repaired + pixelBytes, pixel)) return true;
        }
    }
    return false;
}

SmartAlpha lookAt(const PagePlace& place, const ilTile& box) {
    SmartAlpha seen;
    if (place.page.isSolid()) {
        std::uint8_t bytes[pixelBytes];
        for (unsigned n = 0; n < 4; ++n)
            bytes[n] = static_cast<std::uint8_t>(place.page.solid >> 8 * n);
        seen.look(bytes, 1);
        return seen;
    }
    for (std::int32_t y = box.y; y < box.endY(); ++y)
        seen.look(place.at(box.x, y), static_cast<std::size_t>(box.nx));
    return seen;
}

}  // namespace

void SmartAlpha::look(const std::uint8_t* pixels, std::size_t count) {
    std::int32_t most = static_cast<std::int32_t>(excess);
    std::uint8_t alphas = 0;
    for (std::size_t n = 0; n < count; ++n, pixels += pixelBytes) {
        most = std::max(most, largestColour(pixels) - std::int32_t{pixels[3]});
        alphas = static_cast<std::uint8_t>(alphas | pixels[3]);
    }
    excess = static_cast<std::uint32_t>(most);
    anyAlpha = anyAlpha || alphas != 0;
}

AlphaFault SmartAlpha::fault() const {
    if (excess == 0) return AlphaFault::None;
    if (excess < slightExcess) return AlphaFault::Slight;
    return anyAlpha ? AlphaFault::Strong : AlphaFault::NoAlpha;
}

AlphaRepair SmartAlpha::repairFor(std::size_t slight, std::size_t strong, std::size_t noAlpha) {
    if (slight != 0) return AlphaRepair::Raise;
    if (strong == 0) return noAlpha != 0 ? AlphaRepair::Raise : AlphaRepair::None;
    return noAlpha == 0 ? AlphaRepair::Multiply : AlphaRepair::Opaque;
}

void SmartAlpha::repair(std::uint8_t* pixels, std::size_t count, AlphaRepair repair) {
    for (std::size_t n = 0; n < count; ++n, pixels += pixelBytes) repairPixel(pixels, repair);
}

void SmartAlpha::cut(std::uint8_t* pixels, std::size_t count) {
    for (std::size_t n = 0; n < count; ++n, pixels += pixelBytes)
        for (std::size_t c = 0; c < 3; ++c) pixels[c] = std::min(pixels[c], pixels[3]);
}

// What lies beyond the bounds is the fill, and stays so.
void ilSmartImage::sanitizeAlpha() {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk || channels_ != 4) return;
    shrinkNow();
    const ilTile area = boxes_.content;
    std::size_t counts[4] = {};
    {
        PageWalk walk(pages_, area, PageWalk::Create::No, PageWalk::Order::Swap);
        if (!walk.isComplete()) return;
        while (walk.next()) {
            if (!walk.realize(RealizeMode::Read)) return;
            const PagePlace place{*walk.slot(), walk.x(), walk.y()};
            ++counts[static_cast<std::size_t>(
                lookAt(place, intersection(walk.tile(), area)).fault())];
        }
    }
    const AlphaRepair repair = SmartAlpha::repairFor(counts[1], counts[2], counts[3]);
    if (repair == AlphaRepair::None) return;
    noteModified(area);
    PageWalk walk(pages_, area, PageWalk::Create::Yes, PageWalk::Order::Swap);
    while (walk.next()) {
        const ilTile part = intersection(walk.tile(), area);
        if (!walk.realize(RealizeMode::Read)) continue;
        const PagePlace before{*walk.slot(), walk.x(), walk.y()};
        if (!wouldChange(before, part, repair)) continue;
        if (before.page.isSolid()) {
            const std::uint32_t value = repairedWord(before.page.solid, repair);
            if (part == walk.tile()) {
                static_cast<void>(makePageSolid(walk.slot(), value));
                noteAlpha(*walk.slot());
                continue;
            }
        }
        if (!walk.realize(RealizeMode::Write)) continue;
        const PagePlace place{*walk.slot(), walk.x(), walk.y()};
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            SmartAlpha::repair(place.at(part.x, y), static_cast<std::size_t>(part.nx), repair);
        notePageWritten(place.page);
        noteAlpha(place.page);
    }
    setAltered(NotifyOnly);
}

AlphaClass ilSmartImage::alphaClassOf(const ilTile& box, bool force) {
    const ImageLockScope lock;
    const ilTile inside = SmartBounds::clipped(box);
    if (beginOperation() != ImageOk || inside.isEmpty()) return AlphaClass::NoPage;
    AlphaClass common = AlphaClass::NoPage;
    PageWalk walk(pages_, inside, PageWalk::Create::No,
                  force ? PageWalk::Order::Swap : PageWalk::Order::Rows);
    if (!walk.isComplete()) return AlphaClass::Mixed;
    while (walk.next()) {
        const AlphaClass own = classOfPart(walk.slot(), walk.tile(), inside, force);
        if (common != AlphaClass::NoPage && own != common) return AlphaClass::Mixed;
        common = own;
    }
    return common;
}

// Looked at once: a class that holds for the whole page is kept there.
AlphaClass ilSmartImage::classOfPart(SmartPageRef& slot, const ilTile& tile, const ilTile& box,
                                     bool force) {
    if (channels_ != 4) return AlphaClass::Mixed;
    if (slot->alphaClass != AlphaClass::Mixed) return slot->alphaClass;
    if (slot->isSolid()) return slot->alphaClass = alphaClassOfPage(*slot);
    if (!force || !realizePage(slot, RealizeMode::Read)) return AlphaClass::Mixed;
    if (slot->isSolid() || box.contains(tile)) return slot->alphaClass = alphaClassOfPage(*slot);
    const ilTile part = intersection(tile, box);
    return alphaClassOfPart(*slot, part.x - tile.x, part.y - tile.y, part.nx, part.ny);
}

}  // namespace brushwork
