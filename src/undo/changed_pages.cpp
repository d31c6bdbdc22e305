#include "undo/changed_pages.h"

namespace brushwork {
namespace {

constexpr std::int32_t side = 128;
constexpr std::int64_t mostPages = 1 << 16;

std::int32_t floorToPage(std::int32_t at) {
    return at & ~(side - 1);
}

struct Standing {
    const SmartPage* page = nullptr;
    bool isFill = false;  // of the image that has it
};

// Without taking pages from parents: a long chain would be filled all the way down. Nothing for an
// image whose ground has no pages.
std::optional<Standing> standingAt(ilSmartImage* image, std::int32_t x, std::int32_t y) {
    for (; image; image = ilSmartImage::from(image->source())) {
        SmartPageTable& table = image->pages();
        const SmartPageRef* const slot = table.findSlot(x, y);
        if (slot) return Standing{slot->get(), slot->get() == table.defaultPage().get()};
        if (!table.asksParent(x, y)) return Standing{nullptr, true};
    }
    return std::nullopt;
}

bool differsAt(ilSmartImage& child, ilSmartImage& parent, std::int32_t x, std::int32_t y) {
    SmartPageTable& table = child.pages();
    if (!table.findSlot(x, y) && table.asksParent(x, y)) return false;
    const std::optional<Standing> above = standingAt(&child, x, y);
    const std::optional<Standing> below = standingAt(&parent, x, y);
    if (!above || !below) return true;
    return above->page != below->page && !(above->isFill && below->isFill);
}

}  // namespace

std::optional<ilTile> changedBox(ilSmartImage* one, ilSmartImage* other) {
    constexpr ilTile nothing{0, 0, 0, 0, 0, 1};
    if (one == other) return nothing;
    if (!one || !other || one->channels() != other->channels()) return std::nullopt;
    ilSmartImage& child = one->source() == other ? *one : *other;
    ilSmartImage& parent = &child == one ? *other : *one;
    if (child.source() != &parent) return std::nullopt;
    if (child.pages().solidValue() != parent.pages().solidValue()) return std::nullopt;
    const ilTile all = unionOf(child.pages().bounds(), parent.pages().bounds());
    if (all.isEmpty()) return nothing;
    if ((std::int64_t{all.nx} / side + 2) * (std::int64_t{all.ny} / side + 2) > mostPages)
        return std::nullopt;
    ilTile changed = nothing;
    for (std::int32_t y = floorToPage(all.y); y < all.endY(); y += side)
        for (std::int32_t x = floorToPage(all.x); x < all.endX(); x += side)
            if (differsAt(child, parent, x, y))
                changed = unionOf(changed, flatTile(x, y, side, side));
    return changed;
}

}  // namespace brushwork
