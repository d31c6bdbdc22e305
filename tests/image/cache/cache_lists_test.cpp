// Random operations on the cache beside a naive model of its lists: vectors, the head first.
#include <algorithm>
#include <map>
#include <vector>

#include "cache_rig.h"

namespace brushwork {
namespace {

using test::CacheRig;
using test::Manager;
using Pages = std::vector<SmartPage*>;

struct Known {
    std::uint32_t seed = 0;  // of the pixels; 0: `solid` all over
    std::uint8_t solid = 0;
};

class Model {
  public:
    std::map<SmartPage*, Known> known;
    Pages big, small, locked, swapped, scan;
    SmartPage* latest = nullptr;  // took the last stamp

    Pages& home(const SmartPage& page) { return page.channels == 1 ? small : big; }
    static void push(Pages& list, SmartPage& page) { list.insert(list.begin(), &page); }
    void forget(SmartPage& page) {
        for (Pages* list : {&big, &small, &locked, &swapped, &scan}) std::erase(*list, &page);
    }
    static bool has(const Pages& list, const SmartPage& page) {
        return std::find(list.begin(), list.end(), &page) != list.end();
    }
    // A page that goes out, and whether without the disk.
    void out(SmartPage& page) {
        forget(page);
        if (known[&page].seed != 0) push(swapped, page);
    }
    // Looked at by a scan. True: it became solid.
    bool look(SmartPage& page) {
        std::erase(scan, &page);
        if (known[&page].seed != 0) return false;
        forget(page);
        return true;
    }
};

void expectList(const Pages& list, SmartPage* SmartPage::*next, SmartPage* SmartPage::*previous,
                const char* name) {
    for (std::size_t i = 0; i < list.size(); ++i) {
        ASSERT_EQ(list[i]->*previous, i == 0 ? nullptr : list[i - 1]) << name << ' ' << i;
        ASSERT_EQ(list[i]->*next, i + 1 == list.size() ? nullptr : list[i + 1]) << name;
    }
}

class CacheLists : public testing::TestWithParam<Manager> {
  protected:
    SmartPage& any() { return *rig_.pages[random_() % rig_.pages.size()]; }
    void draw(SmartPage& page) {
        Known& known = model_.known[&page];
        known = {random_() % 4 == 0 ? 0 : ++lastSeed_, static_cast<std::uint8_t>(random_())};
        if (known.seed == 0) return CacheRig::fill(page, known.solid);
        const auto bytes = CacheRig::pixels(page.channels, known.seed);
        std::memcpy(page.data, bytes.data(), bytes.size());
    }
    void entered(SmartPage& page) {
        Model::push(page.cacheLocks > 0 ? model_.locked : model_.home(page), page);
    }

    void allocate(SmartPage& page) {
        if (page.inMemory() || page.state == PageState::Swapped) return;
        ASSERT_TRUE(cache_.allocatePage(page));
        entered(page);
        draw(page);
    }
    void write(SmartPage& page) {
        if (!page.inMemory()) return;
        cache_.dropSwapRecord(page);
        draw(page);
        cache_.addScan(page);
        if (!Model::has(model_.scan, page)) Model::push(model_.scan, page);
    }
    void touch(SmartPage& page) {
        cache_.touch(page);
        if (&page == model_.latest) return;
        model_.latest = &page;
        if (!page.inMemory() || page.cacheLocks > 0) return;
        std::erase(model_.home(page), &page);
        Model::push(model_.home(page), page);
    }
    void pageOut(SmartPage& page) {
        if (!page.inMemory() || page.cacheLocks > 0) return;
        ASSERT_TRUE(cache_.pageOut(page));
        BworkMemory::instance().releaseBig(cache_.detachBuffer(page));
        model_.out(page);
    }
    void pageIn(SmartPage& page) {
        if (page.state != PageState::Swapped) return;
        ASSERT_TRUE(cache_.pageIn(page));
        std::erase(model_.swapped, &page);
        entered(page);
    }
    void lock(SmartPage& page) {
        cache_.hardLock(page);
        if (page.cacheLocks != 1 || !page.inMemory()) return;
        model_.forget(page);
        Model::push(model_.locked, page);
    }
    void unlock(SmartPage& page) {
        if (page.cacheLocks == 0) return;
        cache_.hardUnlock(page);
        if (page.cacheLocks != 0 || !page.inMemory()) return;
        std::erase(model_.locked, &page);
        Model::push(model_.home(page), page);
    }
    void release(SmartPage& page) {
        model_.forget(page);
        model_.known.erase(&page);
        if (model_.latest == &page) model_.latest = nullptr;
        rig_.release(page);
    }
    void idle() {
        const bool more = cache_.idleStep();
        const auto free = [](const SmartPage* page) { return page->cacheLocks == 0; };
        const auto first = std::find_if(model_.scan.begin(), model_.scan.end(), free);
        if (first != model_.scan.end()) model_.look(**first);
        EXPECT_EQ(more, !model_.scan.empty());
    }
    SmartPage* evictInModel(std::uint8_t channels) {
        const Pages scan = model_.scan;
        for (SmartPage* page : scan)
            if (page->channels == channels && page->cacheLocks == 0 && model_.look(*page))
                return page;
        const Pages& list = channels == 1 ? model_.small : model_.big;
        for (std::size_t i = list.size(); i-- > 0;) {
            if (list[i]->pins > 0) continue;
            SmartPage* const page = list[i];
            model_.out(*page);
            return page;
        }
        return nullptr;
    }
    void evict(bool bigOne) {
        void* const buffer = bigOne ? cache_.evictForBig() : cache_.evictForSmall();
        SmartPage* page = evictInModel(bigOne ? 4 : 1);
        if (!page && !bigOne) page = evictInModel(4);
        EXPECT_EQ(buffer != nullptr, page != nullptr);
        if (buffer) BworkMemory::instance().releaseBig(buffer);
    }

    void step() {
        const auto draw = random_() % 100;
        if (rig_.pages.size() < 4 || (draw < 10 && rig_.pages.size() < 40)) {
            SmartPage& page = rig_.make(random_() % 2 == 0 ? 1 : 4, 7);
            model_.known[&page] = {0, 7};
            return;
        }
        SmartPage& page = any();
        if (draw < 25)
            allocate(page);
        else if (draw < 40)
            write(page);
        else if (draw < 52)
            touch(page);
        else if (draw < 60)
            pageOut(page);
        else if (draw < 70)
            pageIn(page);
        else if (draw < 74)
            lock(page);
        else if (draw < 80)
            unlock(page);
        else if (draw < 84)
            release(page);
        else if (draw < 90)
            idle();
        else
            evict(draw < 95);
    }

    void verify() {
        const SmartImageCache::Counts counts = cache_.counts();
        EXPECT_EQ(counts.big, static_cast<int>(model_.big.size()));
        EXPECT_EQ(counts.small, static_cast<int>(model_.small.size()));
        EXPECT_EQ(counts.locked, static_cast<int>(model_.locked.size()));
        EXPECT_EQ(counts.swapped, static_cast<int>(model_.swapped.size()));
        EXPECT_EQ(counts.scan, static_cast<int>(model_.scan.size()));
        expectList(model_.big, &SmartPage::lruNext, &SmartPage::lruPrev, "big");
        expectList(model_.small, &SmartPage::lruNext, &SmartPage::lruPrev, "small");
        expectList(model_.locked, &SmartPage::lruNext, &SmartPage::lruPrev, "locked");
        expectList(model_.swapped, &SmartPage::lruNext, &SmartPage::lruPrev, "swapped");
        expectList(model_.scan, &SmartPage::scanNext, &SmartPage::scanPrev, "scan");
        for (const auto& [page, known] : model_.known) {
            if (page->isSolid()) {
                ASSERT_EQ(known.seed, 0U);
                const std::uint32_t factor = page->channels == 1 ? 1 : 0x01010101;
                ASSERT_TRUE(page->solid == known.solid * factor || page->solid == 7);
            } else if (page->inMemory() && known.seed != 0) {
                ASSERT_TRUE(CacheRig::holds(*page, known.seed));
            }
        }
        ASSERT_TRUE(cache_.isConsistent());
    }

    CacheRig rig_{GetParam()};
    SmartImageCache& cache_ = rig_.cache;
    Model model_;
    std::mt19937 random_;
    std::uint32_t lastSeed_ = 0;
};

TEST_P(CacheLists, RandomOperationsAgreeWithAModel) {
    rig_.set("ZENON_ZC_SMARTIMAGE_CHECKING");
    for (unsigned seed = 1; seed <= 3; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        random_.seed(seed);
        for (int i = 0; i < 4000; ++i) {
            step();
            if (HasFatalFailure()) return;
            if (i % 16 == 0) verify();
            if (HasFailure()) return;
        }
    }
    const SmartImageCache::Counts counts = cache_.counts();
    EXPECT_GT(counts.swapWrites, 300U);
    EXPECT_GT(counts.swapReads, 300U);
}

TEST_P(CacheLists, TheLatestTouchedPageStays) {
    SmartPage& a = rig_.draw(4, 1);
    SmartPage& b = rig_.draw(4, 2);
    SmartPage& c = rig_.draw(4, 3);
    cache_.touch(a);
    EXPECT_EQ(a.lruPrev, nullptr);
    const std::uint32_t stamp = a.stamp;
    SmartPage& d = rig_.draw(4, 4);  // comes before it, without a touch
    cache_.touch(a);
    EXPECT_EQ(a.stamp, stamp);
    EXPECT_EQ(a.lruPrev, &d);
    cache_.touch(b);
    cache_.touch(a);
    EXPECT_EQ(a.lruPrev, nullptr);
    EXPECT_EQ(a.lruNext, &b);
    EXPECT_EQ(c.lruNext, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Both, CacheLists, testing::Values(Manager::Off, Manager::On),
                         [](const auto& row) {
                             return row.param == Manager::On ? "ManagerOn" : "ManagerOff";
                         });

}  // namespace
}  // namespace brushwork
