#include "image/smart/smart_page_table.h"

#include <map>
#include <random>
#include <utility>

#include "page_rig.h"
#include "platform/alloc_routes.h"

namespace brushwork {
namespace {

using namespace test;

using Place = std::pair<std::int32_t, std::int32_t>;

ilTile pageTile(std::int32_t x, std::int32_t y) {
    return flatTile(x, y, pageSide, pageSide);
}

// What a table shows, page by page, without blocks, sharing or states. A page that isn't in the map
// was never written and has the fill.
struct NaivePages {
    std::uint32_t fill = 0;
    ilTile bounds{0, 0, 0, 0, 0, 1};
    std::map<Place, Pixels> pages;

    [[nodiscard]] Pixels at(std::int32_t x, std::int32_t y) const {
        const auto found = pages.find({x, y});
        return found == pages.end() ? Pixels(pagePixels, fill) : found->second;
    }
    Pixels& made(std::int32_t x, std::int32_t y) {
        return pages.try_emplace({x, y}, Pixels(pagePixels, fill)).first->second;
    }
    void trim(const ilTile& box) {
        bounds = box;
        for (auto it = pages.begin(); it != pages.end();) {
            const auto [x, y] = it->first;
            if (intersection(pageTile(x, y), box).isEmpty()) {
                it = pages.erase(it);
                continue;
            }
            for (std::int32_t i = 0; i < pagePixels; ++i)
                if (!box.contains(flatTile(x + i % pageSide, y + i / pageSide, 1, 1)))
                    it->second[static_cast<std::size_t>(i)] = fill;
            ++it;
        }
    }
};

class SmartPageTableTest : public PageTest {
  protected:
    // A parent of patterns, solids and its own fill, all within `bounds`; outside it is `fill`.
    void makeParent(std::uint8_t channels, const ilTile& bounds, std::uint32_t fill) {
        for (std::int32_t y = bounds.y & pageMask; y < bounds.endY(); y += pageSide)
            for (std::int32_t x = bounds.x & pageMask; x < bounds.endX(); x += pageSide) {
                const auto seed = static_cast<std::uint32_t>(x * 31 + y);
                Pixels pixels = seed % 3 == 0 ? uniform(channels, seed) : pattern(channels, seed);
                for (std::int32_t i = 0; i < pagePixels; ++i)
                    if (!bounds.contains(flatTile(x + i % pageSide, y + i / pageSide, 1, 1)))
                        pixels[static_cast<std::size_t>(i)] = fill;
                const bool isUniform =
                    std::count(pixels.begin(), pixels.end(), pixels[0]) == pagePixels;
                parent_[{x, y}] =
                    isUniform ? solidPage(channels, pixels[0]) : pageOf(channels, pixels);
            }
        source.initial = bounds;
        source.give = [this](std::int32_t x, std::int32_t y) {
            return drawsFailure && drawsFailure() ? SmartPageRef() : parent_.at({x, y});
        };
    }
    void TearDown() override {
        parent_.clear();
        PageTest::TearDown();
    }

    FakeSource source;
    std::map<Place, SmartPageRef> parent_;
    std::function<bool()> drawsFailure;
};

// One table and its naive twin, under random commands.
class TableTwins {
  public:
    TableTwins(FakeSource& source, std::uint8_t channels, unsigned seed)
        : table(source, channels), random_(seed) {}

    std::uint32_t word() { return static_cast<std::uint32_t>(random_()); }

    std::int32_t draw(std::int32_t below) {
        return static_cast<std::int32_t>(word() % static_cast<unsigned>(below));
    }
    std::int32_t place() { return draw(3) == 0 ? draw(9000) - 4500 : draw(1000) - 300; }
    std::int32_t pagePlace() { return place() & pageMask; }
    std::uint32_t value() { return table.channels() == 1 ? word() & 255 : word(); }

    void write() {
        const std::int32_t x = pagePlace(), y = pagePlace();
        SmartPageRef* const slot = table.pageRef(x, y, true);
        ASSERT_NE(slot, nullptr);
        Pixels& twin = naive.made(x, y);
        const std::int32_t mode = draw(4);
        if (mode == 0) {
            twin = Pixels(pagePixels, value());
            ASSERT_TRUE(makePageSolid(*slot, twin[0]));
        } else if (mode == 1) {
            twin = pattern(table.channels(), word());
            ASSERT_TRUE(writePixels(*slot, twin));
        } else {
            ASSERT_TRUE(realizePage(*slot, RealizeMode::Write));
            for (std::int32_t n = 0; n < mode; ++n) {
                const auto i = static_cast<std::size_t>(draw(pagePixels));
                twin[i] = value();
                storePixel(**slot, i, twin[i]);
            }
            notePageWritten(**slot);
        }
        table.extendBounds(pageTile(x, y));
        naive.bounds =
            naive.bounds.isEmpty() ? pageTile(x, y) : unionOf(naive.bounds, pageTile(x, y));
    }
    void look(bool create) {
        const std::int32_t x = pagePlace(), y = pagePlace();
        SmartPageRef* slot = table.pageRef(x, y, create);
        ASSERT_NE(slot, nullptr);
        if (draw(8) == 0) slot = table.pageRef(x, y, !create);
        ASSERT_EQ(pixelsOf(*slot), naive.at(x, y)) << x << ", " << y;
    }
    void trim() {
        const ilTile box = flatTile(place(), place(), draw(1500), draw(1500));
        const bool grows = naive.bounds.isEmpty() || box.contains(naive.bounds);
        const bool force = draw(4) == 0;
        ASSERT_TRUE(table.setBounds(box, force));
        if (grows && !force)
            naive.bounds = box;
        else
            naive.trim(box);
        ASSERT_EQ(table.bounds(), naive.bounds);
    }
    void compareAll() {
        for (std::int32_t y = -4608; y < 4608; y += pageSide)
            for (std::int32_t x = -4608; x < 4608; x += pageSide) {
                SmartPageRef* const slot = table.pageRef(x, y, false);
                ASSERT_NE(slot, nullptr);
                if (naive.pages.contains({x, y}) || slot->get() != table.defaultPage().get()) {
                    ASSERT_EQ(pixelsOf(*slot), naive.at(x, y)) << x << ", " << y;
                }
            }
        ASSERT_EQ(table.defaultPage()->solid, naive.fill);
        ASSERT_TRUE(table.defaultPage()->isSolid());
    }

    SmartPageTable table;
    NaivePages naive;

  private:
    std::mt19937 random_;
};

TEST_P(SmartPageTableTest, AgreesWithANaiveMapOfPages) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const std::uint8_t channels = seed % 2 ? 4 : 1;
        SCOPED_TRACE("seed " + std::to_string(seed));
        cache().setCeiling(40 * 65536);
        cache().setMaxBytes(40 * 65536);
        source = FakeSource();
        parent_.clear();
        const bool hasParent = seed % 3 != 0;
        const ilTile bounds = flatTile(-200, -77, 900, 651);
        if (hasParent) makeParent(channels, bounds, 5);
        TableTwins twins(source, channels, seed);
        twins.table.setSolidValue(9);
        twins.naive.fill = 9;
        if (hasParent) {
            ASSERT_TRUE(twins.table.setBounds(bounds));
            twins.naive.bounds = bounds;
            for (auto& [place, page] : parent_) twins.naive.pages[place] = pixelsOf(page);
        }
        std::map<Place, Pixels> parentBefore = twins.naive.pages;
        for (int step = 0; step < 400 && !HasFatalFailure(); ++step) {
            switch (const std::int32_t kind = twins.draw(40)) {
                case 0: twins.trim(); break;
                case 1:
                    twins.naive.fill = twins.value();
                    ASSERT_TRUE(twins.table.setSolidValue(twins.naive.fill));
                    break;
                case 2:
                    if (twins.draw(8) != 0) break;
                    twins.table.clear();
                    twins.naive.pages.clear();
                    break;
                default: kind < 22 ? twins.write() : twins.look(kind < 26);
            }
        }
        twins.compareAll();
        if (HasFatalFailure()) return;
        for (auto& [place, page] : parent_) ASSERT_EQ(pixelsOf(page), parentBefore[place]);
        EXPECT_TRUE(cache().isConsistent());
        EXPECT_GT(cache().counts().swapWrites, 0u);
    }
}

TEST_P(SmartPageTableTest, TheLimit) {
    SmartPageTable table(source, 4);
    table.setSolidValue(0xFF00FF00);
    table.setBounds(flatTile(-2000000000, -2000000000, 2147483647, 2147483647));
    EXPECT_EQ(table.bounds(), flatTile(-102400, -102400, 204800, 204800));
    for (const std::int32_t inside : {-102400, 102272}) {
        ASSERT_NE(table.pageRef(inside, inside, true), nullptr);
        EXPECT_NE(table.findSlot(inside, inside), nullptr);
    }
    const std::size_t held = table.heldPages();
    for (const std::int32_t beyond : {-102528, 102400, 2147483520, -2147483647 - 1}) {
        SmartPageRef* slot = table.pageRef(beyond, 0, true);
        ASSERT_NE(slot, nullptr);
        EXPECT_EQ((*slot)->solid, 0xFF00FF00u);
        ASSERT_TRUE(realizePage(*slot, RealizeMode::Write));
        storePixel(**slot, 0, 1);  // lost
        slot = table.pageRef(beyond, 0, true);
        EXPECT_TRUE((*slot)->isSolid());
        EXPECT_EQ((*slot)->solid, 0xFF00FF00u);
        slot = table.pageRef(0, beyond, false);
        EXPECT_EQ(slot->get(), table.defaultPage().get());
        EXPECT_EQ(table.findSlot(beyond, 0), nullptr);
    }
    EXPECT_EQ(table.heldPages(), held);
    EXPECT_EQ(clippedToLimit({5, 6, 0, -7, -8, -1}), (ilTile{5, 6, 0, 0, 0, 0}));
    EXPECT_EQ(clippedToLimit({2147483647, 0, 0, 2147483647, 1, 1}),
              (ilTile{102400, 0, 0, 0, 1, 1}));
}

// The shared page of the fill survives writers of every kind, those too who forgot to ask for
// creation.
TEST_P(SmartPageTableTest, TheFillIsNeverWrittenThrough) {
    SmartPageTable table(source, 4);
    SmartPage* const fill = table.defaultPage().get();
    for (const RealizeMode mode :
         {RealizeMode::Write, RealizeMode::Overwrite, RealizeMode::MakeSolid})
        for (const bool create : {false, true}) {
            SmartPageRef* const slot = table.pageRef(256, -128, create);
            ASSERT_EQ(slot->get(), fill);
            ASSERT_TRUE(realizePage(*slot, mode));
            EXPECT_NE(slot->get(), fill);
            EXPECT_EQ(table.pageRef(256, -128, false)->get(), fill);  // out of bounds
            table.clear();
        }
    EXPECT_EQ(table.defaultPage().get(), fill);
    EXPECT_TRUE(fill->isSolid());
    EXPECT_EQ(fill->solid, 0u);
    EXPECT_EQ(fill->clean, 1);
    // Within the bounds one written pixel makes one page, and a look makes none.
    const std::uint64_t allocated = cache().counts().allocated;
    table.setBounds(flatTile(0, 0, 10000, 10000));
    for (std::int32_t x = 0; x < 10000; x += pageSide) {
        ASSERT_EQ(table.pageRef(x, 128, false)->get(), fill);
        ASSERT_EQ(table.pageRef(x, 256, true)->get(), fill);
    }
    EXPECT_EQ(cache().counts().allocated, allocated);
    ASSERT_TRUE(realizePage(*table.pageRef(128, 256, true), RealizeMode::Write));
    EXPECT_EQ(cache().counts().allocated, allocated + 1);
}

TEST_P(SmartPageTableTest, PagesOfTheParent) {
    makeParent(4, flatTile(0, 0, 1000, 1000), 0);
    SmartPageTable table(source, 4);
    ASSERT_TRUE(table.setBounds(source.initial));
    const std::uint64_t allocated = cache().counts().allocated;
    EXPECT_EQ(table.pageRef(128, 0, false)->get(), parent_.at({128, 0}).get());
    EXPECT_EQ(table.pageRef(128, 0, true)->get(), parent_.at({128, 0}).get());
    EXPECT_EQ(table.pullCount(), 0u);
    EXPECT_EQ(table.pageRef(256, 0, true)->get(), parent_.at({256, 0}).get());
    EXPECT_EQ(table.pullCount(), 1u);
    EXPECT_EQ(source.asked, 2);
    // Not within the initial bounds, though within the table's.
    table.extendBounds(flatTile(0, 0, 3000, 1000));
    EXPECT_EQ(table.pageRef(1024, 0, true)->get(), table.defaultPage().get());
    EXPECT_EQ(source.asked, 2);
    EXPECT_EQ(cache().counts().allocated, allocated);
    // A slot follows the parent until it is looked up.
    parent_[{384, 0}] = solidPage(4, 77);
    EXPECT_EQ((*table.pageRef(384, 0, false))->solid, 77u);
    parent_[{384, 0}] = solidPage(4, 78);
    EXPECT_EQ((*table.pageRef(384, 0, false))->solid, 77u);
    EXPECT_EQ((*table.pageRef(512, 0, false)).get(), parent_.at({512, 0}).get());
}

// Straddling pages are copied only where something has to be cut off.
TEST_P(SmartPageTableTest, TrimmingCopiesOnlyWhatItCuts) {
    const ilTile bounds = flatTile(0, 0, 1000, 1000);
    makeParent(4, bounds, 0);
    SmartPageTable table(source, 4);
    ASSERT_TRUE(table.setBounds(bounds));
    const std::uint64_t allocated = cache().counts().allocated;
    ASSERT_TRUE(table.setBounds(bounds, true));
    EXPECT_EQ(cache().counts().allocated, allocated);
    // Along y = 1000 and x = 1000 nothing is cut; along x = 100 every page but the one of the
    // fill is.
    ASSERT_TRUE(table.setBounds(flatTile(100, 0, 900, 1000)));
    EXPECT_EQ(cache().counts().allocated, allocated + 7);
    SmartPageRef* const slot = table.pageRef(0, 128, false);
    ASSERT_NE(slot->get(), parent_.at({0, 128}).get());
    EXPECT_EQ((*slot)->clean, 0);
    // What was cut off stays so when the bounds grow.
    ASSERT_TRUE(table.setBounds(flatTile(512, 512, 128, 128)));
    EXPECT_EQ(table.heldPages(), 0u);
    table.extendBounds(bounds);
    EXPECT_EQ(table.pageRef(256, 256, false)->get(), table.defaultPage().get());
    EXPECT_EQ(table.pageRef(512, 512, false)->get(), parent_.at({512, 512}).get());
}

TEST_P(SmartPageTableTest, AFillIsThatOfOneImage) {
    SmartPageTable table(source, 1);
    table.setBounds(flatTile(0, 0, 512, 512));
    SmartPageRef* const slot = table.pageRef(0, 0, true);
    const SmartPageRef elsewhere = *slot;  // as a clone of the image holds it
    ASSERT_TRUE(table.setSolidValue(0x105));
    EXPECT_EQ(table.solidValue(), 5u);
    EXPECT_EQ((*slot)->solid, 5u);
    EXPECT_EQ((*table.pageRef(128, 0, false))->solid, 5u);
    EXPECT_EQ((*table.pageRef(1280, 0, false))->solid, 5u);
    EXPECT_EQ(elsewhere->solid, 0u);
}

TEST_P(SmartPageTableTest, NoMemoryForParentsPagesAndBlocks) {
    makeParent(4, flatTile(0, 0, 1000, 1000), 0);
    SmartPageTable table(source, 4);
    ASSERT_TRUE(table.setBounds(source.initial));
    drawsFailure = [] { return true; };
    EXPECT_EQ(table.pageRef(0, 0, true), nullptr);
    EXPECT_EQ(table.heldPages(), 0u);
    EXPECT_EQ(table.pullCount(), 0u);
    EXPECT_FALSE(table.setBounds(flatTile(10, 10, 500, 500)));
    EXPECT_EQ(table.bounds(), source.initial);
    drawsFailure = {};
    EXPECT_EQ(table.pageRef(0, 0, true)->get(), parent_.at({0, 0}).get());

    const platform::AllocRoutes before = platform::allocRoutes();
    platform::AllocRoutes dry = before;
    dry.allocate = [](std::size_t) -> void* { return nullptr; };
    platform::setAllocRoutes(dry);
    SmartPageRef* const slot = table.pageRef(4096, 0, true);
    platform::setAllocRoutes(before);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(table.heldPages(), 1u);
    ASSERT_NE(table.pageRef(4096, 0, true), nullptr);
    // A cut that can't be made leaves the box and what lies within it.
    const Pixels cut = pixelsOf(*table.pageRef(0, 128, true));
    {
        for (auto& [place, page] : parent_) ++page->pins;
        const Shortage shortage;
        EXPECT_FALSE(table.setBounds(flatTile(10, 10, 500, 500)));
        for (auto& [place, page] : parent_) --page->pins;
    }
    EXPECT_EQ(table.bounds(), source.initial);
    EXPECT_EQ(pixelsOf(*table.pageRef(0, 128, true)), cut);
    ASSERT_TRUE(table.setBounds(flatTile(10, 10, 500, 500)));
    EXPECT_NE(pixelsOf(*table.pageRef(0, 128, true)), cut);
}

INSTANTIATE_TEST_SUITE_P(Memory, SmartPageTableTest, ::testing::Bool(), managerName);

}  // namespace
}  // namespace brushwork
