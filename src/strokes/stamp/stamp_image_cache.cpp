#include "strokes/stamp/stamp_image_cache.h"

#include <utility>

namespace brushwork::npc {
namespace {

constexpr std::size_t firstBuckets = 8;

std::uint64_t bytesOf(const Ref<ilSPMemoryImg>& image) {
    return image ? image->byteSize() : 0;
}

}  // namespace

std::uint32_t stampKeyHash(std::uint64_t key) {
    std::uint32_t hash = 0x811C9DC5u;
    for (int byte = 0; byte < 8; ++byte, key >>= 8) {
        hash ^= static_cast<std::uint32_t>(key & 0xFF);
        hash *= 16777619u;
    }
    return hash;
}

std::uint64_t StampImageCacheItem::byteSize() const {
    return bytesOf(mask) + bytesOf(color);
}

StampImageCache::StampImageCache(std::uint32_t maxBytes, std::uint32_t maxItems)
    : buckets_(firstBuckets, none), maxBytes_(maxBytes), maxItems_(maxItems) {}

StampImageCache::~StampImageCache() = default;

std::uint64_t StampImageCache::open(const StampIdentity& identity) {
    if (identity_ != identity) {
        clear();
        identity_ = identity;
        ++generation_;
    }
    return generation_;
}

std::uint32_t StampImageCache::bucketOf(std::uint64_t key) const {
    return stampKeyHash(key) & (bucketCount() - 1);
}

std::uint32_t StampImageCache::placeOf(std::uint64_t key) const {
    if (itemCount_ == 0) return none;
    std::uint32_t place = buckets_[bucketOf(key)];
    while (place != none && places_[place].key != key) place = places_[place].next;
    return place;
}

std::uint32_t StampImageCache::takePlace() {
    if (freePlaces_ == none) {
        places_.emplace_back();
        return static_cast<std::uint32_t>(places_.size() - 1);
    }
    return std::exchange(freePlaces_, places_[freePlaces_].next);
}

void StampImageCache::growBuckets() {
    buckets_.assign(buckets_.size() * 2, none);
    for (std::uint32_t place = newest_; place != none; place = places_[place].older) {
        std::uint32_t& first = buckets_[bucketOf(places_[place].key)];
        places_[place].next = std::exchange(first, place);
    }
}

void StampImageCache::linkAsNewest(std::uint32_t place) {
    places_[place].newer = none;
    places_[place].older = newest_;
    (newest_ == none ? oldest_ : places_[newest_].newer) = place;
    newest_ = place;
}

void StampImageCache::unlink(std::uint32_t place) {
    const std::uint32_t newer = places_[place].newer, older = places_[place].older;
    (newer == none ? newest_ : places_[newer].older) = older;
    (older == none ? oldest_ : places_[older].newer) = newer;
}

// Stamps of one size and angle have places of their own.
std::size_t StampImageCache::recentOf(std::uint64_t key) {
    const std::uint64_t within = (key & 0xF) | (key >> 4 & 0xF0);
    return static_cast<std::size_t>((within ^ key >> 48) & 0xFF);
}

StampImageCacheItem* StampImageCache::find(std::uint64_t key) {
    std::uint32_t& recent = recent_[recentOf(key)];
    std::uint32_t place = recent;
    // A key is held in one place at most, so whatever place holds it is the right one.
    if (place >= places_.size() || places_[place].key != key || !places_[place].item) {
        place = placeOf(key);
        if (place == none) return nullptr;
        recent = place;
    }
    if (place != newest_) {
        unlink(place);
        linkAsNewest(place);
    }
    return places_[place].item.get();
}

void StampImageCache::insert(const Ref<StampImageCacheItem>& item, std::uint64_t key) {
    erase(key);
    if (itemCount_ >= buckets_.size()) growBuckets();
    const std::uint32_t place = takePlace();
    std::uint32_t& first = buckets_[bucketOf(key)];
    Place& taken = places_[place];
    taken.key = key;
    taken.bytes = item->byteSize();
    taken.item = item;
    taken.next = std::exchange(first, place);
    linkAsNewest(place);
    usedBytes_ += taken.bytes;
    ++itemCount_;
    while (itemCount_ != 0 && (usedBytes_ > maxBytes_ || itemCount_ >= maxItems_)) evictOldest();
}

Ref<StampImageCacheItem> StampImageCache::remove(std::uint32_t place) {
    unlink(place);
    Place& left = places_[place];
    std::uint32_t* link = &buckets_[bucketOf(left.key)];
    while (*link != place) link = &places_[*link].next;
    *link = left.next;
    usedBytes_ -= left.bytes;
    --itemCount_;
    left.next = std::exchange(freePlaces_, place);
    return std::exchange(left.item, {});
}

Ref<StampImageCacheItem> StampImageCache::evictOldest() {
    return oldest_ == none ? nullptr : remove(oldest_);
}

std::uint32_t StampImageCache::erase(std::uint64_t key) {
    const std::uint32_t place = placeOf(key);
    if (place == none) return 0;
    remove(place);
    return 1;
}

void StampImageCache::clear() {
    places_.clear();
    buckets_.assign(firstBuckets, none);
    freePlaces_ = newest_ = oldest_ = none;
    usedBytes_ = 0;
    itemCount_ = 0;
}

StampCacheLease::StampCacheLease(Ref<StampImageCache> cache, const StampIdentity& identity)
    : cache_(std::move(cache)), identity_(identity) {}

void StampCacheLease::claim() {
    if (generation_ == 0 || generation_ != cache_->generation())
        generation_ = cache_->open(identity_);
}

StampImageCacheItem* StampCacheLease::find(std::uint64_t key) {
    if (!cache_) return nullptr;
    claim();
    return cache_->find(key);
}

void StampCacheLease::insert(const Ref<StampImageCacheItem>& item, std::uint64_t key) {
    if (!cache_ || !item) return;
    claim();
    cache_->insert(item, key);
}

}  // namespace brushwork::npc
