// Chains of smart images: source, push, materialising, a parent's end.
#include <vector>

#include "image/smart/il_smart_image.h"
#include "image/smart/page_accessor.h"
#include "image/smart/page_hold.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_walk.h"
#include "image/smart/pending_pages.h"

namespace brushwork {
namespace {

// Nobody has looked at the page yet: it is still the parent's own.
bool isUnread(const SmartPage& page, const ilImage& parent, std::int32_t x, std::int32_t y) {
    return page.state == PageState::Pending && page.pending &&
           page.pending->source.get() == &parent && page.pending->x == x && page.pending->y == y;
}

}  // namespace

bool ilSmartImage::hasParent() {
    return smartParent_ || parentImage(0) != nullptr;
}

// What lies beyond the parent's bounds is the parent's fill. A parent that has grown since may show
// more on the page than this image's bounds hold: they grow with it, else a later trim would cut
// pixels off that readers have seen.
SmartPageRef ilSmartImage::parentPage(std::int32_t x, std::int32_t y) {
    if (smartParent_) {
        const SmartPageRef* const slot = smartParent_->pages_.pageRef(x, y, false);
        if (!slot) return SmartPageRef();
        grow(intersection(flatTile(x, y, pageSide, pageSide), smartParent_->boxes_.content));
        return *slot;
    }
    ilImage* const parent = parentImage(0);
    if (!parent) return SmartPageRef();
    SmartPageRef page(makeSmartPage(pages_.channels(), pages_.solidValue()));
    if (!page || !promisePage(*page, *parent, x, y)) return SmartPageRef();
    return page;
}

ilSmartImage* ilSmartImage::smartSource() {
    return smartParent_.get();
}

ilSIDImage* ilSmartImage::source() {
    const ImageLockScope lock;
    if (!isSound() || parentCount() != 1) return nullptr;
    ilImage* const parent = parentImage(0);
    const bool rests = parent && parent->isKindOf(ilSIDImage::descriptor) != 0;
    return rests ? static_cast<ilSIDImage*>(parent) : nullptr;
}

void ilSmartImage::leaveParent() {
    if (!smartParent_) return;
    smartParent_->children_.remove(*this);
    smartParent_.reset();
}

void ilSmartImage::takeParent(ilImage& parent) {
    maxParents_ = 1;
    setParent(&parent, 0);
    if (ilSmartImage* const smart = from(&parent)) {
        smartParent_ = Ref<ilSmartImage>(smart);
        smart->children_.add(*this);
    }
}

void ilSmartImage::setSource(ilImage* image) {
    const ImageLockScope lock;
    if (!isSound() || image == this) return;
    const Ref<ilImage> held(image);
    if (ilSmartImage* const smart = from(image)) {
        // No circles, and no pixels that mean something else here.
        if (smart->descendsFrom(*this) || smart->pages_.channels() != pages_.channels()) return;
    }
    const Ref<ilSmartImage> former = smartParent_;
    leaveParent();
    if (image) {
        takeParent(*image);
    } else {
        removeParentSlot(0);
        maxParents_ = 0;
    }
}

void ilSmartImage::materialize(const ilTile* box, bool pull) {
    const ImageLockScope lock;
    if (beginOperation() != ImageOk) return;
    const ilTile area = SmartBounds::clipped(box ? *box : boxes_.content);
    PageWalk walk(pages_, area, PageWalk::Create::Yes, PageWalk::Order::Swap);
    while (pull && walk.next()) static_cast<void>(walk.realize(RealizeMode::Read));
}

void ilSmartImage::releaseChildren() {
    ilImage* const heirs = parentImage(0);
    for (std::size_t n = 0; n < children_.entryCount(); ++n) {
        ilSmartImage* const child = children_.at(n);
        if (!child) continue;
        child->materialize(nullptr, false);
        child->setSource(heirs);
    }
}

std::int32_t ilSmartImage::pushToSource() {
    const ImageLockScope lock;
    if (const auto result = beginOperation()) return result;
    ilImage* const parent = parentImage(0);
    if (parentCount() != 1 || !parent) return ImageNotOneParent;
    const Ref<ilImage> held(parent);
    PageWalk walk(pages_, SmartBounds::clipped(boxes_.modified), PageWalk::Create::No,
                  smartParent_ ? PageWalk::Order::Rows : PageWalk::Order::Swap);
    const std::int32_t result =
        smartParent_ ? pushToSmart(*smartParent_, walk) : pushToOther(*parent, walk);
    parent->setAltered(AlteredPixels);
    return walk.isComplete() ? result : std::int32_t{ImageUnusable};
}

// As to a smart parent: what this image shows goes out, be it written, copied, kept since it was
// looked at, or the fill where pixels were cut off.
std::int32_t ilSmartImage::pushToOther(ilImage& parent, PageWalk& walk) {
    const ilImageConfig own(TypeUChar, OrderInterleaved, channels_);
    std::int32_t result = ImageOk;
    while (walk.next()) {
        if (isUnread(*walk.slot(), parent, walk.x(), walk.y())) continue;
        std::int32_t given = ImageUnusable;
        if (readPromised(parent, walk.x(), walk.y()) && walk.realize(RealizeMode::Read)) {
            SmartPage& page = *walk.slot();
            const PageHold hold(page);
            given = page.isSolid()
                        ? parent.fillRegion(walk.tile(), pixelOfWord(channels_, page.solid))
                        : parent.writeRegion(walk.tile(), page.data, walk.tile(), &own);
        }
        if (given != ImageOk) result = given;
    }
    return result;
}

// A page in a slot here that isn't the parent's own was written, or put there by a copy.
std::int32_t ilSmartImage::pushToSmart(ilSmartImage& parent, PageWalk& walk) {
    std::int32_t result = parent.setFill(fill_);
    if (parent.boxes_.content != boxes_.content) {
        const ilTile kept = boxes_.content;
        if (const auto filled = parent.fillRegion(parent.boxes_.content, fill_, nullptr, &kept))
            result = filled;
        parent.applyBounds(parent.boxes_.hasFixed ? parent.boxes_.fixed : kept);
    }
    while (walk.next()) {
        const ilTile tile = walk.tile();
        if (intersection(tile, pages_.bounds()).isEmpty()) continue;
        SmartPageRef* const slot = parent.pages_.pageRef(tile.x, tile.y, true);
        if (!slot) {
            result = ImageUnusable;
            continue;
        }
        SmartPage* page = walk.slot().get();
        if (page == slot->get()) continue;
        // The page of this image's fill is the parent's page of the same fill.
        if (page == pages_.defaultPage().get()) page = parent.pages_.defaultPage().get();
        slot->assign(page, ReleaseReason::SlotReplaced);
        parent.noteModified(tile);
        parent.noteAlpha(*page);
        parent.grow(tile);
    }
    return result;
}

}  // namespace brushwork
