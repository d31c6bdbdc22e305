#include "strokes/stamp/stamp_image_cache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <random>
#include <string>
#include <utility>

#include "support/allocation_count.h"
#include "support/test_seed.h"

namespace brushwork::npc {
namespace {

Ref<StampImageCacheItem> itemOf(int maskWidth, int height, int colorWidth = 0) {
    const auto item = makeRef<StampImageCacheItem>();
    item->mask = makeRef<ilSPMemoryImg>(maskWidth, height, 1);
    if (colorWidth > 0) item->color = makeRef<ilSPMemoryImg>(colorWidth, height, 4);
    return item;
}

// The same by a list, the newest in front.
struct Model {
    struct Entry {
        std::uint64_t key, bytes;
        Ref<StampImageCacheItem> item;
    };
    std::list<Entry> entries;
    std::uint64_t bytes = 0;

    auto at(std::uint64_t key) {
        return std::find_if(entries.begin(), entries.end(),
                            [key](const Entry& e) { return e.key == key; });
    }
    void drop(std::list<Entry>::iterator entry) {
        bytes -= entry->bytes;
        entries.erase(entry);
    }
    Ref<StampImageCacheItem> find(std::uint64_t key) {
        const auto entry = at(key);
        if (entry == entries.end()) return {};
        entries.splice(entries.begin(), entries, entry);
        return entries.front().item;
    }
    void insert(const Ref<StampImageCacheItem>& item, std::uint64_t key, const StampImageCache& c) {
        if (const auto old = at(key); old != entries.end()) drop(old);
        entries.push_front({key, item->byteSize(), item});
        bytes += item->byteSize();
        while (!entries.empty() && (bytes > c.maxBytes() || entries.size() >= c.maxItems()))
            drop(std::prev(entries.end()));
    }
};

TEST(StampImageCache, BehavesLikeAListOverRandomSequences) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (const auto& [maxBytes, maxItems] :
         {std::pair{4096u, 1000u}, {1u << 20, 17u}, {600u, 4u}, {1u << 20, 1u}, {1u << 20, 0u}}) {
        const auto cache = makeRef<StampImageCache>(maxBytes, maxItems);
        StampCacheLease lease(cache, {});
        Model model;
        for (int n = 0; n < 6000; ++n) {
            // Keys that crowd in a few buckets and keys all over.
            const std::uint64_t key = (random() % 40) * (random() % 3 == 0 ? 0x9E3779B97F4Aull : 1);
            switch (random() % 16) {
                case 0: {
                    const auto entry = model.at(key);
                    ASSERT_EQ(cache->erase(key), entry == model.entries.end() ? 0u : 1u);
                    if (entry != model.entries.end()) model.drop(entry);
                    break;
                }
                case 1: {
                    Ref<StampImageCacheItem> oldest;
                    if (!model.entries.empty()) {
                        oldest = model.entries.back().item;
                        model.drop(std::prev(model.entries.end()));
                    }
                    ASSERT_EQ(cache->evictOldest(), oldest);
                    break;
                }
                case 2:
                    if (random() % 50 == 0) {
                        cache->clear();
                        model = {};
                        ASSERT_EQ(cache->bucketCount(), 8u);
                    }
                    break;
                case 3:
                case 4:
                case 5:
                case 6:
                case 7: {
                    // Now and then one that is larger than the cache.
                    const auto item = itemOf(16, random() % 100 == 0 ? 300 : 1 + int(random() % 5),
                                             random() % 2 ? 4 : 0);
                    lease.insert(item, key);
                    model.insert(item, key, *cache);
                    break;
                }
                default: ASSERT_EQ(lease.find(key), model.find(key)) << "step " << n;
            }
            ASSERT_EQ(cache->itemCount(), model.entries.size()) << "step " << n;
            ASSERT_EQ(cache->usedBytes(), model.bytes) << "step " << n;
            ASSERT_LE(cache->itemCount(), cache->bucketCount());
        }
        while (!model.entries.empty()) {
            ASSERT_EQ(cache->evictOldest(), model.entries.back().item);
            model.drop(std::prev(model.entries.end()));
        }
        EXPECT_FALSE(cache->evictOldest());
        EXPECT_EQ(cache->usedBytes(), 0u);
    }
}

TEST(StampImageCache, HoldsAtMost8191Items) {
    const auto cache = makeRef<StampImageCache>();
    StampCacheLease lease(cache, {});
    EXPECT_EQ(cache->maxBytes(), 64u << 20);
    const auto item = itemOf(16, 1);
    for (std::uint64_t key = 0; key < 8191; ++key) lease.insert(itemOf(16, 1), key);
    EXPECT_EQ(cache->itemCount(), 8191u);
    EXPECT_TRUE(lease.find(0));  // so that 1 is the oldest
    lease.insert(item, 9000);
    EXPECT_EQ(cache->itemCount(), 8191u);
    EXPECT_FALSE(lease.find(1));
    EXPECT_TRUE(lease.find(0));
    EXPECT_EQ(cache->bucketCount(), 8192u);
}

TEST(StampImageCache, EvictedImagesLiveAsLongAsTheyAreHeld) {
    const auto cache = makeRef<StampImageCache>(64u);
    StampCacheLease lease(cache, {});
    lease.insert(itemOf(16, 2), 1);
    const Ref<StampImageCacheItem> held(lease.find(1));
    ASSERT_TRUE(held);
    held->mask->data()[31] = 77;
    lease.insert(itemOf(16, 4, 4), 2);  // 128 bytes: too large, and takes the first with it
    EXPECT_EQ(cache->itemCount(), 0u);
    EXPECT_EQ(held->refCount(), 1u);
    EXPECT_EQ(held->mask->data()[31], 77);
    lease.insert(held, 3);
    EXPECT_EQ(lease.find(3), held);
}

TEST(StampCacheLease, AnotherBrushFindsAnEmptyCache) {
    const auto cache = makeRef<StampImageCache>();
    StampIdentity red;
    red.color = {1, 0, 0, 1};
    StampCacheLease first(cache, red);
    first.insert(itemOf(16, 1), 5);
    StampCacheLease same(cache, red);
    EXPECT_TRUE(same.find(5)) << "the next stroke of the same brush";

    const auto differing = [&red](auto change) {
        StampIdentity other = red;
        change(other);
        return other;
    };
    const StampIdentity others[] = {differing([](StampIdentity& i) { i.color[3] = 0.5f; }),
                                    differing([](StampIdentity& i) { i.hardness = 0.5f; }),
                                    differing([](StampIdentity& i) { i.procedural = false; }),
                                    differing([](StampIdentity& i) { i.tipPreset = 3; }),
                                    differing([](StampIdentity& i) { i.tipRecord[62] = 1; }),
                                    differing([](StampIdentity& i) { i.shapeId = 9; }),
                                    differing([](StampIdentity& i) { i.shapeRevision = 9; }),
                                    differing([](StampIdentity& i) { i.colorId = 9; }),
                                    differing([](StampIdentity& i) { i.colorRevision = 9; }),
                                    differing([](StampIdentity& i) { i.withColor = true; })};
    for (const StampIdentity& other : others) {
        first.insert(itemOf(16, 1), 5);
        ASSERT_TRUE(first.find(5));
        StampCacheLease second(cache, other);
        EXPECT_FALSE(second.find(5));
        second.insert(itemOf(16, 1), 5);
        // The first brush's lease is older than what is in the cache now.
        EXPECT_FALSE(first.find(5));
    }
    EXPECT_FALSE(StampCacheLease().find(5));
}

TEST(StampCacheLease, FindingAllocatesNothing) {
    const auto cache = makeRef<StampImageCache>();
    StampCacheLease lease(cache, {});
    for (std::uint64_t key = 0; key < 100; ++key) lease.insert(itemOf(16, 1), key);
    const auto before = test::allocations();
    std::size_t found = 0;
    for (std::uint64_t key = 0; key < 200; ++key) found += static_cast<bool>(lease.find(key));
    EXPECT_EQ(test::allocations(), before);
    EXPECT_EQ(found, 100u);
}

}  // namespace
}  // namespace brushwork::npc
