#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <random>
#include <set>
#include <vector>

#include "image/chain/box_difference.h"
#include "image/chain/il_page_iterator.h"
#include "image/chain/il_page_tile_manager.h"

namespace brushwork {
namespace {

using Place = std::array<std::int32_t, 4>;

struct Dice {
    std::mt19937 random;
    explicit Dice(unsigned seed) : random(seed) {}
    std::int32_t operator()(std::int32_t low, std::int32_t high) {
        return std::uniform_int_distribution<std::int32_t>(low, high)(random);
    }
    ilTile box(std::int32_t reach, std::int32_t most) {
        return {(*this)(-reach, reach), (*this)(-reach, reach), (*this)(-2, 3),
                (*this)(0, most),       (*this)(0, most),       (*this)(0, 3)};
    }
};

// Every aligned page start of an axis that sees a pixel of the span, found by trying.
std::vector<std::int32_t> alignedStarts(std::int32_t start, std::int32_t extent, std::int32_t size,
                                        std::int32_t border) {
    std::vector<std::int32_t> result;
    const std::int32_t step = size - 2 * border;
    for (std::int32_t k = -200; k <= 200; ++k) {
        const std::int32_t first = k * step - border;
        if (first < start + extent && first + size > start) result.push_back(first);
    }
    return result;
}

std::vector<std::int32_t> unalignedStarts(std::int32_t start, std::int32_t extent,
                                          std::int32_t size, std::int32_t border) {
    std::vector<std::int32_t> result{start};
    for (std::int32_t s = start + size - 2 * border; s < start + extent - border;
         s += size - 2 * border) {
        result.push_back(s);
    }
    return result;
}

TEST(PageIterator, VisitsThePagesThatBruteForceFinds) {
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        PageWalk walk;
        walk.box = dice.box(60, 50);
        // A step of at least the border: a page's border reaches its next neighbour only.
        walk.borderX = dice(0, 3);
        walk.borderY = dice(0, 3);
        walk.borderZ = dice(0, 1);
        walk.pageSize = {3 * walk.borderX + dice(1, 9), 3 * walk.borderY + dice(1, 9),
                         3 * walk.borderZ + dice(1, 3), dice(0, 4)};
        walk.channels = dice(1, 9);
        walk.grid = dice(0, 2) == 0 ? PageGrid::Unaligned : PageGrid::Aligned;
        std::vector<std::int32_t> list;
        if (dice(0, 1) == 1) {
            for (int i = dice(1, 4); i > 0; --i) list.push_back(dice(-1, 10));
            walk.channelList = list.data();
            walk.channelListCount = static_cast<std::int32_t>(list.size());
        }

        const std::int32_t group = walk.pageSize.c > 0 ? walk.pageSize.c : walk.channels;
        std::set<std::int32_t> groups;
        for (std::int32_t c = 0; c < walk.channels; ++c) {
            if (list.empty()) groups.insert(c - c % group);
        }
        for (const std::int32_t c : list) {
            if (c >= 0 && c < walk.channels) groups.insert(c - c % group);
        }
        const auto starts = walk.grid == PageGrid::Aligned ? alignedStarts : unalignedStarts;
        std::vector<Place> expected;
        const ilTile& b = walk.box;
        std::int64_t perGroup = 0;
        if (!b.isEmpty()) {
            const auto xs = starts(b.x, b.nx, walk.pageSize.x, walk.borderX);
            const auto ys = starts(b.y, b.ny, walk.pageSize.y, walk.borderY);
            const auto zs = starts(b.z, b.nz, walk.pageSize.z, walk.borderZ);
            perGroup = static_cast<std::int64_t>(xs.size() * ys.size() * zs.size());
            for (const auto c : groups) {
                for (const auto z : zs) {
                    for (const auto y : ys) {
                        for (const auto x : xs) expected.push_back({x, y, z, c});
                    }
                }
            }
        }
        std::vector<Place> found;
        ilPageIterator page(walk);
        while (page.next()) found.push_back({page.x(), page.y(), page.z(), page.c()});
        ASSERT_EQ(found, expected);
        EXPECT_FALSE(page.next());
        const std::int64_t span = groups.empty() ? 0 : (*groups.rbegin() - *groups.begin()) / group;
        EXPECT_EQ(page.pageCount(), groups.empty() ? 0 : perGroup * (span + 1));
    }
}

TEST(PageIterator, WithoutAStepOrAtTheEndsOfTheRange) {
    PageWalk walk;
    walk.box = flatTile(0, 0, 10, 10);
    walk.pageSize = {4, 4, 1, 1};
    walk.borderX = 2;
    EXPECT_FALSE(ilPageIterator(walk).next());
    walk.borderX = 0;
    walk.box.x = 0x7FFFFFFF - 10;
    ilPageIterator page(walk);
    int pages = 0;
    while (page.next()) ++pages;
    EXPECT_EQ(pages, 3 * 3);
}

TEST(BoxDifference, AgreesWithVoxels) {
    for (unsigned seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const ilTile box = dice.box(4, 7);
        const ilTile hole = dice.box(4, 7);
        std::map<Place, int> times;
        int pieces = 0;
        ilTile piece;
        for (BoxDifference rest(box, hole); rest.next(piece); ++pieces) {
            ASSERT_FALSE(piece.isEmpty());
            for (auto z = piece.z; z < piece.endZ(); ++z) {
                for (auto y = piece.y; y < piece.endY(); ++y) {
                    for (auto x = piece.x; x < piece.endX(); ++x) ++times[{x, y, z, 0}];
                }
            }
        }
        ASSERT_LE(pieces, 6);
        std::size_t outside = 0;
        for (auto z = box.z; z < box.endZ(); ++z) {
            for (auto y = box.y; y < box.endY(); ++y) {
                for (auto x = box.x; x < box.endX(); ++x) {
                    const bool cut = !hole.isEmpty() && hole.contains({x, y, z, 1, 1, 1});
                    const auto found = times.find({x, y, z, 0});
                    ASSERT_EQ(found != times.end(), !cut && !box.isEmpty());
                    if (cut || box.isEmpty()) continue;
                    ASSERT_EQ(found->second, 1);
                    ++outside;
                }
            }
        }
        ASSERT_EQ(times.size(), outside);
    }
}

TEST(BoxDifference, CutsInOrder) {
    const ilTile box{0, 0, 0, 10, 10, 10};
    const ilTile expected[] = {{0, 0, 7, 10, 10, 3}, {0, 0, 0, 10, 10, 2}, {0, 6, 2, 10, 4, 5},
                               {0, 0, 2, 10, 3, 5},  {8, 3, 2, 2, 3, 5},   {0, 3, 2, 4, 3, 5}};
    BoxDifference rest(box, {4, 3, 2, 4, 3, 5});
    ilTile piece;
    for (const ilTile& wanted : expected) {
        ASSERT_TRUE(rest.next(piece));
        EXPECT_EQ(piece, wanted);
    }
    EXPECT_FALSE(rest.next(piece));
    BoxDifference whole(box, {4, 3, 2, 0, 3, 5});
    ASSERT_TRUE(whole.next(piece));
    EXPECT_EQ(piece, box);
    EXPECT_FALSE(whole.next(piece));
}

TEST(PageTileManager, ABoxEndingOnACellEntersTheNext) {
    ilPageTileManager record;
    EXPECT_FALSE(record.addTile({5, 5, 0, 0, 9, 1}));
    EXPECT_TRUE(record.isEmpty());
    EXPECT_TRUE(record.addTile({0, 0, 0, 128, 128, 1}));
    ASSERT_EQ(record.cells().size(), 4u);
    int empty = 0;
    for (const auto& [cell, tile] : record.cells()) empty += tile.isEmpty() ? 1 : 0;
    EXPECT_EQ(empty, 3);
    EXPECT_EQ(record.estimatedBytes(), 65536u);
    EXPECT_FALSE(record.addTile({10, 10, 0, 20, 118, 1}));
    EXPECT_EQ(record.scaledDown(9).cells().size(), 1u) << "empty parts don't grow";
    record.clear();
    EXPECT_TRUE(record.isEmpty());
    EXPECT_TRUE(record.bounds().isEmpty());
}

// Per cell the smallest box around the pixels that were added there; cells whose entry is empty
// aside, which is where joining empty parts would make a difference.
std::map<ilPageTileManager::Cell, ilTile> touched(const std::vector<ilTile>& tiles) {
    std::map<ilPageTileManager::Cell, ilTile> result;
    for (const ilTile& t : tiles) {
        for (auto y = t.y; y < t.endY(); ++y) {
            for (auto x = t.x; x < t.endX(); ++x) {
                const auto down = [](std::int32_t v) {
                    return static_cast<std::int32_t>(std::floor(v / 128.0));
                };
                ilTile& cell = result[{down(x), down(y)}];
                cell = unionOf(cell, flatTile(x, y, 1, 1));
            }
        }
    }
    return result;
}

TEST(PageTileManager, AgreesWithPixels) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        ilPageTileManager record;
        std::vector<ilTile> tiles;
        ilTile around;
        for (int i = dice(1, 6); i > 0; --i) {
            ilTile tile = flatTile(dice(-300, 300), dice(-300, 300), dice(0, 90), dice(0, 90));
            // Nothing that ends on a cell's edge: that case has its own test.
            if ((tile.endX() & 127) == 0) ++tile.nx;
            if ((tile.endY() & 127) == 0) ++tile.ny;
            const auto before = record.cells();
            const bool changed = record.addTile(tile);
            EXPECT_EQ(changed, before != record.cells());
            if (tile.isEmpty()) continue;
            tiles.push_back(tile);
            around = unionOf(around, tile);
        }
        EXPECT_EQ(record.cells(), touched(tiles));
        EXPECT_EQ(record.bounds(), around);
        const ilTile area = flatTile(dice(-400, 300), dice(-400, 300), dice(0, 500), dice(0, 500));
        std::vector<ilTile> met;
        for (const auto& [cell, t] : record.cells())
            if (const ilTile part = intersection(t, area); !part.isEmpty()) met.push_back(part);
        EXPECT_EQ(record.tilesIn(area), met);

        const int shift = dice(1, 3);
        std::set<std::pair<std::int32_t, std::int32_t>> small, shown;
        for (const auto& [cell, t] : record.cells()) {
            for (auto y = t.y; y < t.endY(); ++y) {
                for (auto x = t.x; x < t.endX(); ++x) small.insert({x >> shift, y >> shift});
            }
        }
        const ilPageTileManager scaled = record.scaledDown(shift);
        for (const auto& [cell, t] : scaled.cells()) {
            for (auto y = t.y; y < t.endY(); ++y) {
                for (auto x = t.x; x < t.endX(); ++x) shown.insert({x, y});
            }
        }
        // Parts of two old cells may join in one box, so the record may hold more.
        for (const auto& pixel : small) ASSERT_TRUE(shown.contains(pixel));
        if (!tiles.empty()) {
            EXPECT_EQ(record.scaledUp(shift).bounds().x, around.x * (1 << shift));
        }
        if (record.cells().size() == 1) {
            EXPECT_EQ(shown, small);
        }
    }
}

}  // namespace
}  // namespace brushwork
