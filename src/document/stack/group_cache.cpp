#include "document/stack/group_cache.h"

#include <algorithm>

namespace brushwork {

GroupCache::Found GroupCache::find(std::uint32_t ground, std::span<const std::int32_t> ids) const {
    Found best;
    for (const Entry& entry : entries_) {
        if (entry.ground != ground) continue;
        if (entry.ids.size() <= best.length || entry.ids.size() > ids.size()) continue;
        if (std::equal(entry.ids.begin(), entry.ids.end(), ids.begin()))
            best = {entry.image, entry.ids.size()};
    }
    return best;
}

void GroupCache::store(std::uint32_t ground, std::span<const std::int32_t> ids,
                       ilSmartImage& image) {
    Ref<ilSmartImage> kept = image.clone();
    if (!kept) return;
    std::erase_if(entries_, [&](const Entry& entry) {
        return entry.ground == ground &&
               std::equal(entry.ids.begin(), entry.ids.end(), ids.begin(), ids.end());
    });
    if (entries_.size() == most) entries_.erase(entries_.begin());
    entries_.push_back({ground, {ids.begin(), ids.end()}, std::move(kept)});
}

void GroupCache::noteChange(std::int32_t id) {
    std::erase_if(entries_, [id](const Entry& entry) {
        return std::find(entry.ids.begin(), entry.ids.end(), id) != entry.ids.end();
    });
}

}  // namespace brushwork
