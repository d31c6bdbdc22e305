#include "image/smart/page_realize.h"

#include <array>
#include <tuple>
#include <utility>

#include "image/chain/vector_image.h"
#include "page_rig.h"

namespace brushwork {
namespace {

using namespace test;

constexpr std::array allModes{RealizeMode::Read, RealizeMode::Write, RealizeMode::Overwrite,
                              RealizeMode::MakeSolid};
constexpr std::array usualStates{PageState::InMemory, PageState::Swapped, PageState::Solid,
                                 PageState::Pending};

// A page in the wanted state and what its pixels are.
struct Subject {
    Subject(std::uint8_t channels, PageState state) {
        before = state == PageState::Solid ? uniform(channels, 0xFF804020) : pattern(channels, 7);
        if (state == PageState::InMemory || state == PageState::Swapped) {
            page = pageOf(channels, before);
            if (state == PageState::Swapped) {
                EXPECT_TRUE(pushOut(*page));
            }
        } else {
            page = solidPage(channels, before[0]);
        }
        if (state == PageState::Pending) {
            source = Ref<VectorImage>(new VectorImage(pageSide, pageSide, 1, channels));
            for (std::int32_t i = 0; i < pagePixels; ++i)
                for (std::int32_t c = 0; c < channels; ++c)
                    source->at(i % pageSide, i / pageSide)
                        .setChannel(c, before[static_cast<std::size_t>(i)] >> (8 * c) & 255);
            EXPECT_TRUE(attachPendingRead(*page, *source, 0, 0));
            page->state = PageState::Pending;
        }
        page->clean = 1;
        page->alphaClass = AlphaClass::Opaque;
        EXPECT_EQ(page->state, state);
    }

    Pixels before;
    Ref<VectorImage> source;
    SmartPageRef page;
};

class PageRealizeTest : public PageTest {
  protected:
    // Every combination of one page, 1 or 2 holders.
    template <class Check>
    void forAll(Check check) {
        for (const std::uint8_t channels : {std::uint8_t{1}, std::uint8_t{4}})
            for (const PageState state : usualStates)
                for (const RealizeMode mode : allModes)
                    for (const bool shared : {false, true}) {
                        SCOPED_TRACE("channels " + std::to_string(channels) + " state " +
                                     std::to_string(static_cast<int>(state)) + " mode " +
                                     std::to_string(static_cast<int>(mode)) +
                                     (shared ? " shared" : ""));
                        Subject subject(channels, state);
                        SmartPageRef other = shared ? subject.page : SmartPageRef();
                        check(subject, other, mode);
                        if (HasFatalFailure()) return;
                    }
    }
};

TEST_P(PageRealizeTest, EveryModeInEveryState) {
    forAll([](Subject& subject, SmartPageRef& other, RealizeMode mode) {
        SmartPageRef& slot = subject.page;
        SmartPage* const old = slot.get();
        const PageState state = old->state;
        const SmartImageCache::Counts before = cache().counts();
        ASSERT_TRUE(realizePage(slot, mode));
        const SmartImageCache::Counts after = cache().counts();
        const bool renews = mode == RealizeMode::Overwrite || mode == RealizeMode::MakeSolid;
        const bool writes = mode != RealizeMode::Read;
        const bool pagedIn = state == PageState::Swapped && !renews;
        EXPECT_EQ(after.misses - before.misses, pagedIn ? 1u : 0u);
        EXPECT_EQ(after.hits - before.hits,
                  pagedIn || (state == PageState::Solid && !renews) ? 0u : 1u);
        EXPECT_EQ(after.cloned - before.cloned, other && mode == RealizeMode::Write ? 1u : 0u);

        const bool staysSolid = state == PageState::Solid && !writes;
        EXPECT_EQ(slot->state, mode == RealizeMode::MakeSolid || staysSolid ? PageState::Solid
                                                                            : PageState::InMemory);
        EXPECT_EQ(slot.get() == old, !(other && writes));
        EXPECT_EQ(slot->refCount, other && !writes ? 2 : 1);
        EXPECT_EQ(slot->clean, writes ? 0 : 1);
        EXPECT_EQ(slot->alphaClass, writes ? AlphaClass::Mixed : AlphaClass::Opaque);
        EXPECT_EQ(slot->cloned, 0);
        EXPECT_EQ(slot->pins, 0);
        EXPECT_EQ(slot->cacheLocks, 0);
        if (writes) {
            EXPECT_EQ(slot->unscanned, slot->inMemory() ? 0 : 1);
            EXPECT_EQ(slot->swapRecord, nullptr);
        }
        if (mode == RealizeMode::MakeSolid) {
            EXPECT_EQ(slot->solid, 0u);
        }
        if (!renews) {
            EXPECT_EQ(pixelsOf(slot), subject.before);
        }
        if (other) {
            EXPECT_EQ(other.get(), old);
            EXPECT_EQ(other->clean, 1);
            if (mode == RealizeMode::Write) {
                EXPECT_EQ(slot->sourcePage, old);
            }
            if (slot->inMemory() && writes) std::memset(slot->data, 0x11, slot->bytes());
            EXPECT_EQ(pixelsOf(other), subject.before);
        }
        EXPECT_TRUE(cache().isConsistent());
    });
}

// Without memory the slot keeps its page as it was, and the next try brings it.
TEST_P(PageRealizeTest, NoMemoryLosesNothing) {
    int failures = 0;
    forAll([&](Subject& subject, SmartPageRef& other, RealizeMode mode) {
        SmartPageRef& slot = subject.page;
        SmartPage* const old = slot.get();
        const PageState state = old->state;
        const std::int32_t holders = old->refCount;
        bool realized;
        {
            const PagePin pin(*old);  // or it would make room for itself
            const Shortage shortage;
            realized = realizePage(slot, mode);
        }
        if (!realized) {
            ++failures;
            ASSERT_EQ(slot.get(), old);
            EXPECT_EQ(old->refCount, holders);
            const bool broughtIn = state == PageState::Swapped && old->inMemory();
            EXPECT_TRUE(old->state == state || broughtIn);
            EXPECT_EQ(pixelsOf(slot), subject.before);
            EXPECT_EQ(old->clean, 1);
        } else {
            const bool needsNone = mode == RealizeMode::MakeSolid || state == PageState::InMemory ||
                                   (state == PageState::Solid && mode == RealizeMode::Read);
            EXPECT_TRUE(needsNone);
        }
        if (other) {
            EXPECT_EQ(pixelsOf(other), subject.before);
        }
        ASSERT_TRUE(realizePage(slot, mode));
        EXPECT_TRUE(cache().isConsistent());
    });
    EXPECT_GT(failures, 20);
}

TEST_P(PageRealizeTest, HardLockedPagesKeepTheirMemory) {
    for (const RealizeMode mode : {RealizeMode::Overwrite, RealizeMode::MakeSolid}) {
        Subject subject(4, PageState::InMemory);
        SmartPageRef& slot = subject.page;
        std::uint8_t* const data = slot->data;
        cache().hardLock(*slot);
        ASSERT_TRUE(realizePage(slot, mode));
        EXPECT_EQ(slot->data, data);
        EXPECT_EQ(pixelsOf(slot), subject.before);
        ASSERT_TRUE(makePageSolid(slot, 0x12345678));
        EXPECT_EQ(slot->data, data);
        EXPECT_EQ(pixelsOf(slot), uniform(4, 0x12345678));
        unlockPage(*slot);
        ASSERT_TRUE(makePageSolid(slot, 0x12345679));
        EXPECT_TRUE(slot->isSolid());
        EXPECT_EQ(slot->solid, 0x12345679u);
    }
    SmartPageRef grey = solidPage(1, 3);
    ASSERT_TRUE(makePageSolid(grey, 0x1FE));
    EXPECT_EQ(grey->solid, 0xFEu);
}

TEST_P(PageRealizeTest, ThreeHoldersAndOneWriter) {
    for (const PageState state : usualStates) {
        SCOPED_TRACE(static_cast<int>(state));
        Subject subject(4, state);
        SmartPageRef& first = subject.page;
        SmartPageRef second = first, third = first;
        ASSERT_TRUE(realizePage(second, RealizeMode::Write));
        storePixel(*second, 5, 99);
        EXPECT_EQ(first.get(), third.get());
        EXPECT_NE(first.get(), second.get());
        EXPECT_EQ(first->refCount, 2);
        EXPECT_EQ(pixelsOf(first), subject.before);
        subject.before[5] = 99;
        EXPECT_EQ(pixelsOf(second), subject.before);
        // Now the others part as well; the last one writes in place.
        SmartPage* const old = first.get();
        ASSERT_TRUE(realizePage(first, RealizeMode::Write));
        ASSERT_TRUE(realizePage(third, RealizeMode::Write));
        EXPECT_NE(first.get(), old);
        EXPECT_EQ(third.get(), old);
    }
}

// A page that was to be scanned is still to be scanned after it was copied.
TEST_P(PageRealizeTest, CloningLeavesTheOldPageOnTheScanList) {
    SmartPageRef page = pageOf(4, pattern(4, 1));
    SmartPageRef other = page;
    ASSERT_EQ(page->unscanned, 0);
    ASSERT_TRUE(realizePage(page, RealizeMode::Write));
    EXPECT_EQ(other->unscanned, 0);
    EXPECT_EQ(cache().counts().scan, 2);
}

TEST_P(PageRealizeTest, StatesThatNoPageShouldBeIn) {
    const std::array<std::tuple<PageState, const char*>, 5> cases{{
        {PageState::Invalid, "\nSID: Error: Invalid page\n"},
        {PageState::NeverSet, ""},
        {PageState::Freed, "\nSID: Error: Freed page\n"},
        {PageState::Unrealized, "\nSID: Error: Unrealized page\n"},
        {PageState::ZeroReference, "\nSID: Error: Attempting to realize a zero refcount page!\n"},
    }};
    for (const auto& [state, text] : cases) {
        SmartPageRef page = solidPage(4, 0);
        page->state = state;
        for (const RealizeMode mode : {RealizeMode::Read, RealizeMode::Write}) {
            logged.clear();
            clearImageFailure();
            SmartPage* const record = page.get();
            EXPECT_FALSE(realizePage(page, mode));
            EXPECT_EQ(logged, text);
            EXPECT_NE(imageFailure(), 0);
            EXPECT_EQ(page.get(), record);
        }
        page->state = PageState::Solid;
    }
    clearImageFailure();
    SmartPageRef none;
    EXPECT_FALSE(realizePage(none, RealizeMode::Read));
}

TEST_P(PageRealizeTest, ExpandingForAReader) {
    SmartPageRef page = solidPage(4, 0xFF112233);
    page->alphaClass = AlphaClass::Opaque;
    {
        const Shortage shortage;
        EXPECT_FALSE(expandPage(*page));
        EXPECT_TRUE(page->isSolid());
    }
    ASSERT_TRUE(expandPage(*page));
    ASSERT_TRUE(expandPage(*page));
    EXPECT_TRUE(page->inMemory());
    EXPECT_EQ(page->alphaClass, AlphaClass::Opaque);
    EXPECT_EQ(page->clean, 1);
    EXPECT_EQ(pixelsOf(page), uniform(4, 0xFF112233));
    ASSERT_TRUE(pushOut(*page));
    EXPECT_FALSE(page->state == PageState::Swapped);  // of one value
}

// An image that turns everything upside down while it is read.
class UnrulyImage : public VectorImage {
  public:
    using VectorImage::VectorImage;
    std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig* config) override {
        if (const auto act = std::exchange(meanwhile, {})) act();
        return VectorImage::readRegion(box, buffer, frame, config);
    }
    std::function<void()> meanwhile;
};

TEST_P(PageRealizeTest, PendingReadsThatComeBackToTheCache) {
    const Ref<UnrulyImage> source(new UnrulyImage(300, 300, 1, 4, TypeUShort, OrderSeparate));
    for (std::int32_t y = 0; y < 300; ++y)
        for (std::int32_t x = 0; x < 300; ++x)
            for (std::int32_t c = 0; c < 4; ++c)
                source->at(x, y).setChannel(c, (x * 7 + y * 3 + c) % 256);
    SmartPageRef page = solidPage(4, 0);
    ASSERT_TRUE(attachPendingRead(*page, *source, 128, 256));
    page->state = PageState::Pending;
    SmartPageRef more = pageOf(4, pattern(4, 3));
    source->meanwhile = [&] {
        EXPECT_TRUE(realizePage(page, RealizeMode::Read));  // itself
        while (void* const buffer = cache().evictForBig())
            BworkMemory::instance().releaseBig(buffer);
        while (cache().idleStep()) {
        }
        EXPECT_EQ(more->state, PageState::Swapped);
        EXPECT_EQ(pixelsOf(more), pattern(4, 3));
    };
    EXPECT_EQ(source->refCount(), 2u);
    const Pixels pixels = pixelsOf(page);
    ASSERT_EQ(pixels.size(), std::size_t{pagePixels});
    EXPECT_EQ(source->refCount(), 1u);
    EXPECT_EQ(page->pending, nullptr);
    EXPECT_EQ(page->cacheLocks, 0);
    for (std::int32_t i = 0; i < pagePixels; ++i) {
        const std::int32_t x = 128 + i % pageSide, y = 256 + i / pageSide;
        std::uint32_t expected = 0;
        for (std::int32_t c = 0; c < 4 && x < 300 && y < 300; ++c)
            expected |= static_cast<std::uint32_t>((x * 7 + y * 3 + c) % 256) << (8 * c);
        ASSERT_EQ(pixels[static_cast<std::size_t>(i)], expected) << x << ", " << y;
    }
}

TEST_P(PageRealizeTest, AFailedPendingReadLeavesAPageInMemory) {
    const Ref<VectorImage> source(new VectorImage(128, 128, 1, 1));
    source->readFailsAtX = 0;
    SmartPageRef page = solidPage(1, 0);
    ASSERT_TRUE(attachPendingRead(*page, *source, 0, 0));
    page->state = PageState::Pending;
    ASSERT_TRUE(realizePage(page, RealizeMode::Write));
    EXPECT_TRUE(page->inMemory());
    EXPECT_EQ(source->refCount(), 1u);
    EXPECT_EQ(imageFailure(), 0);
}

// A page without holders stays as long as somebody works on its memory, and no longer.
TEST_P(PageRealizeTest, LockedAndPinnedPagesOutliveTheirHolders) {
    const std::uint32_t records = smartPageCount();
    for (const bool locked : {false, true}) {
        SmartPageRef page = pageOf(4, pattern(4, 2));
        SmartPage& record = *page;
        if (locked) {
            cache().hardLock(record);
            cache().hardLock(record);
        } else {
            record.pins += 2;
        }
        page.release(ReleaseReason::Trimmed);
        for (int left = 2; left > 0; --left) {
            ASSERT_EQ(smartPageCount(), records + 1);
            EXPECT_TRUE(record.inMemory());
            EXPECT_EQ(cache().counts().scan, 0);
            EXPECT_EQ(pixelOf(record, 100), pattern(4, 2)[100]);
            locked ? unlockPage(record) : unpinPage(record);
        }
        EXPECT_EQ(smartPageCount(), records);
        EXPECT_EQ(record.stamp, 1234012u);
        EXPECT_EQ(record.state, PageState::ZeroReference);
    }
    EXPECT_EQ(cache().counts().usedBytes, 0u);
}

TEST_P(PageRealizeTest, ReleaseOfEveryKindOfPage) {
    for (const PageState state : usualStates) {
        Subject subject(1, state);
        if (state == PageState::Swapped) {
            Subject readBack(1, state);  // in memory, and in the file as well
            ASSERT_TRUE(realizePage(readBack.page, RealizeMode::Read));
            EXPECT_NE(readBack.page->swapRecord, nullptr);
        }
        subject.page.release(ReleaseReason::HolderGone);
        if (subject.source) {
            EXPECT_EQ(subject.source->refCount(), 1u);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Memory, PageRealizeTest, ::testing::Bool(), managerName);

}  // namespace
}  // namespace brushwork
