// npc::StampImageCache: stamps that were made, so that a stroke that repeats one pays once.
//
//     StampCacheLease lease(cache, identity);          // once a stroke
//     StampImageCacheItem* item = lease.find(key);
//     if (!item) lease.insert(made(), key);
//
// The key tells size, angle and place, but not the brush. So nothing is found or kept except
// through a lease, which says whose stamps are meant: the cache holds those of one brush at a time
// and empties itself when another one comes. Several renderers may share a cache.
//
// No lock: the stroke's thread alone.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "brushwork/ref.h"
#include "brushwork/reference_count.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork::npc {

// All that decides a stamp's pixels beside its key. The images go by id and revision.
struct StampIdentity {
    std::array<float, 4> color{};
    float hardness = 1.0f;
    bool procedural = true;
    std::int32_t tipPreset = 0;
    std::array<std::uint32_t, 63> tipRecord{};
    std::uint32_t shapeId = 0, shapeRevision = 0;
    std::uint32_t colorId = 0, colorRevision = 0;
    bool withColor = false;  // items hold a colour image

    friend bool operator==(const StampIdentity&, const StampIdentity&) = default;
};

// A stamp that is kept. Whoever holds it keeps its images, also after the cache has let go of it.
class StampImageCacheItem final : public zn::ReferenceCount {
  public:
    StampImageCacheItem() = default;

  protected:
    ~StampImageCacheItem() override = default;

  public:
    // Bytes of both images.
    [[nodiscard]] std::uint64_t byteSize() const;

    Ref<ilSPMemoryImg> mask;   // 1 channel
    Ref<ilSPMemoryImg> color;  // 4 channels, or none
    ilTile inked;              // of the mask: outside it is 0; may be empty
    ilTile box;                // of the stamp, as seen from the pixel that its middle lies in
    // The mask's, so that a stamp is laid without a look at the image.
    std::uint8_t* maskPixels = nullptr;
    std::int32_t maskStride = 0;  // bytes from row to row
};

class StampImageCache final : public zn::ReferenceCount {
  public:
    static constexpr std::uint32_t defaultMaxBytes = 0x4000000;  // 64 MiB
    static constexpr std::uint32_t defaultMaxItems = 0x2000;

    explicit StampImageCache(std::uint32_t maxBytes = defaultMaxBytes,
                             std::uint32_t maxItems = defaultMaxItems);

  protected:
    ~StampImageCache() override;

  public:
    // Takes out the item that hasn't been found for longest; null if there is none.
    Ref<StampImageCacheItem> evictOldest();
    // 1 if there was one, else 0.
    std::uint32_t erase(std::uint64_t key);
    void clear();

    [[nodiscard]] std::uint32_t usedBytes() const { return static_cast<std::uint32_t>(usedBytes_); }
    [[nodiscard]] std::uint32_t itemCount() const { return itemCount_; }
    [[nodiscard]] std::uint32_t bucketCount() const {
        return static_cast<std::uint32_t>(buckets_.size());
    }
    [[nodiscard]] std::uint32_t maxBytes() const { return maxBytes_; }
    [[nodiscard]] std::uint32_t maxItems() const { return maxItems_; }
    // Hold from the next insertion on.
    void setMaxBytes(std::uint32_t bytes) { maxBytes_ = bytes; }
    void setMaxItems(std::uint32_t items) { maxItems_ = items; }

  private:
    friend class StampCacheLease;

    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
    struct Place {
        std::uint64_t key = 0;
        Ref<StampImageCacheItem> item;
        std::uint32_t next = none;                 // in its bucket, or of the free places
        std::uint32_t newer = none, older = none;  // neighbours in order of use
        std::uint64_t bytes = 0;
    };

    std::uint64_t open(const StampIdentity& identity);
    [[nodiscard]] std::uint64_t generation() const { return generation_; }
    StampImageCacheItem* find(std::uint64_t key);
    void insert(const Ref<StampImageCacheItem>& item, std::uint64_t key);

    [[nodiscard]] static std::size_t recentOf(std::uint64_t key);
    [[nodiscard]] std::uint32_t bucketOf(std::uint64_t key) const;
    [[nodiscard]] std::uint32_t placeOf(std::uint64_t key) const;
    std::uint32_t takePlace();
    void growBuckets();
    void linkAsNewest(std::uint32_t place);
    void unlink(std::uint32_t place);
    Ref<StampImageCacheItem> remove(std::uint32_t place);

    std::vector<Place> places_;
    std::vector<std::uint32_t> buckets_;  // first places; as many as a power of two
    // Where stamps that were found lately may be, by their place within the pixel.
    std::array<std::uint32_t, 256> recent_{};
    std::uint32_t freePlaces_ = none;
    std::uint64_t usedBytes_ = 0;
    std::uint32_t maxBytes_;
    std::uint32_t itemCount_ = 0;
    std::uint32_t maxItems_;
    std::uint32_t newest_ = none, oldest_ = none;
    std::uint64_t generation_ = 0;  // of identities; 0: none yet
    std::optional<StampIdentity> identity_;
};

// 32-bit FNV-1a over the key's bytes, the lowest first.
[[nodiscard]] std::uint32_t stampKeyHash(std::uint64_t key);

// The way into a cache for one brush. Each call empties the cache first if it holds another's
// stamps. Without a cache it finds and keeps nothing.
class StampCacheLease {
  public:
    StampCacheLease() = default;
    StampCacheLease(Ref<StampImageCache> cache, const StampIdentity& identity);

    // Becomes the newest; null if there is none. Allocates nothing. Borrowed: it stays until the
    // cache is changed.
    [[nodiscard]] StampImageCacheItem* find(std::uint64_t key);
    // Becomes the newest, in place of one with that key; then the oldest go until both limits are
    // kept: fewer than maxItems, at most maxBytes. An item above that evicts all, itself included.
    void insert(const Ref<StampImageCacheItem>& item, std::uint64_t key);

    [[nodiscard]] const StampIdentity& identity() const { return identity_; }
    [[nodiscard]] const Ref<StampImageCache>& cache() const { return cache_; }

  private:
    void claim();

    Ref<StampImageCache> cache_;
    StampIdentity identity_;
    std::uint64_t generation_ = 0;
};

}  // namespace brushwork::npc
