#include "undo/changed_pages.h"

namespace brushwork {
namespace {

constexpr std::int32_t page = 128;
constexpr std::int64_t mostPages = 1 << 16;

std::int32_t floorToPage(std::int32_t at) {
    return at & ~(page - 1);
}

// The fill's page is each image's own.
const SmartPage* standingAt(SmartPageTable& table, std::int32_t x, std::int32_t y, bool& known) {
    const SmartPageRef* const slot = table.pageRef(x, y, false);
    known = known && slot && *slot;
    if (!known || slot->get() == table.defaultPage().get()) return nullptr;
    return slot->get();
}

}  // namespace

std::optional<ilTile> changedBox(ilSmartImage* before, ilSmartImage* after) {
    constexpr ilTile nothing{0, 0, 0, 0, 0, 1};
    if (before == after) return nothing;
    if (!before || !after || before->channels() != after->channels()) return std::nullopt;
    SmartPageTable& from = before->pages();
    SmartPageTable& to = after->pages();
    if (from.solidValue() != to.solidValue()) return std::nullopt;
    const ilTile all = unionOf(from.bounds(), to.bounds());
    if (all.isEmpty()) return nothing;
    const std::int64_t pages =
        (std::int64_t{all.nx} / page + 2) * (std::int64_t{all.ny} / page + 2);
    if (pages > mostPages) return std::nullopt;
    ilTile changed = nothing;
    bool known = true;
    for (std::int32_t y = floorToPage(all.y); y < all.endY(); y += page)
        for (std::int32_t x = floorToPage(all.x); x < all.endX(); x += page)
            if (standingAt(from, x, y, known) != standingAt(to, x, y, known) || !known)
                changed = unionOf(changed, flatTile(x, y, page, page));
    if (!known) return std::nullopt;
    return changed;
}

}  // namespace brushwork
