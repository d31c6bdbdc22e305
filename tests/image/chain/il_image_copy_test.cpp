#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "image/chain/il_page_iterator.h"
#include "image/chain/il_region_lock.h"
#include "vector_image.h"

namespace brushwork {
namespace {

using test::VectorImage;

void scribble(VectorImage& image, unsigned seed) {
    std::mt19937 random(seed);
    const ilTile box = image.box();
    for (std::int32_t z = 0; z < box.nz; ++z) {
        for (std::int32_t y = 0; y < box.ny; ++y) {
            for (std::int32_t x = 0; x < box.nx; ++x) {
                for (std::int32_t c = 0; c < image.channels(); ++c) {
                    image.at(x, y, z).setChannel(c, static_cast<double>(random() % 200));
                }
            }
        }
    }
}

// The whole result of a copy, pixel by pixel from the meaning of its arguments.
void expectCopied(VectorImage& target, VectorImage& before, VectorImage& source,
                  const ilTile& targetBox, const ilTile& sourceBox,
                  const std::vector<std::int32_t>& from, const std::vector<std::int32_t>& to) {
    const ilTile all = target.box();
    for (std::int32_t z = 0; z < all.nz; ++z) {
        for (std::int32_t y = 0; y < all.ny; ++y) {
            for (std::int32_t x = 0; x < all.nx; ++x) {
                ilPixel wanted = before.at(x, y, z);
                if (targetBox.contains({x, y, z, 1, 1, 1})) {
                    const auto p = mapPoint<std::int32_t>({x - targetBox.x, y - targetBox.y},
                                                          target.coordSpace(), source.coordSpace(),
                                                          {sourceBox.nx, sourceBox.ny});
                    const ilTile place{sourceBox.x + p.x,
                                       sourceBox.y + p.y,
                                       sourceBox.z + z - targetBox.z,
                                       1,
                                       1,
                                       1};
                    const ilPixel value = source.box().contains(place)
                                              ? source.at(place.x, place.y, place.z)
                                              : source.fill();
                    for (std::size_t i = 0; i < from.size(); ++i) {
                        wanted.setChannel(to[i], value.channel(from[i]));
                    }
                }
                ASSERT_EQ(target.at(x, y, z), wanted) << x << ' ' << y << ' ' << z;
            }
        }
    }
}

TEST(CopyRegion, BetweenAllTypesOrdersSpacesAndChannels) {
    const std::int32_t orders[] = {OrderInterleaved, OrderSequential, OrderSeparate};
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto draw = [&](int low, int high) {
            return std::uniform_int_distribution<std::int32_t>(low, high)(random);
        };
        // Not both of them integers of another range: what can't be held is the pixel's matter.
        const auto image = [&](unsigned content) {
            auto made = makeRef<VectorImage>(draw(3, 9), draw(3, 9), draw(1, 2), draw(1, 4),
                                             1 << draw(0, 7), orders[draw(0, 2)],
                                             draw(0, 1) == 0 ? 4 : draw(1, 8));
            scribble(*made, content);
            return made;
        };
        const auto mine = image(seed);
        const auto other = image(seed + 7000);
        const bool fromOther = draw(0, 1) == 0;
        VectorImage& target = fromOther ? *mine : *other;
        const auto before = makeRef<VectorImage>(target.sizeX(), target.sizeY(), target.sizeZ(),
                                                 target.channels(), target.dataType());
        scribble(*before, fromOther ? seed : seed + 7000);

        const ilTile box{draw(-2, 4), draw(-2, 4), draw(0, 1), draw(1, 8), draw(1, 8), 1};
        ilTile otherBox{draw(-2, 4), draw(-2, 4), draw(0, 1), box.nx, box.ny, 1};
        if (isTransposed(mine->coordSpace()) != isTransposed(other->coordSpace())) {
            std::swap(otherBox.nx, otherBox.ny);
        }
        ilImageConfig config;
        std::int32_t list[6];
        for (auto& entry : list) entry = draw(-1, 4);
        const int kind = draw(0, 3);
        if (kind >= 1) config.channels = draw(1, 4);
        if (kind >= 2) config.channelOffset = draw(0, 2);
        if (kind == 3) config.channelList = list;
        std::vector<std::int32_t> from, to;
        const std::int32_t count = kind == 0 ? mine->channels() : config.channels;
        for (std::int32_t i = 0; i < std::min(count, mine->channels()); ++i) {
            std::int32_t partner = i + config.channelOffset;
            if (kind == 3) partner = list[partner];
            if (partner < 0 || partner >= other->channels()) continue;
            from.push_back(fromOther ? partner : i);
            to.push_back(fromOther ? i : partner);
        }
        ASSERT_EQ(mine->copyRegion(box, *other, otherBox.x, otherBox.y, otherBox.z,
                                   kind == 0 && draw(0, 1) == 0 ? nullptr : &config,
                                   fromOther ? CopyDirection::FromOther : CopyDirection::ToOther),
                  ImageOk);
        // A list that names a target channel twice is decided by the order of writing.
        if (!fromOther && kind == 3) continue;
        ASSERT_NO_FATAL_FAILURE(expectCopied(target, *before, fromOther ? *other : *mine,
                                             fromOther ? box : otherBox, fromOther ? otherBox : box,
                                             from, to));
    }
}

TEST(CopyRegion, OverlappingItselfAndFailing) {
    const auto image = makeRef<VectorImage>(8, 8, 1, 1);
    const auto copy = makeRef<VectorImage>(8, 8, 1, 1);
    scribble(*image, 1);
    scribble(*copy, 1);
    EXPECT_EQ(
        image->copyRegion(flatTile(1, 1, 6, 6), *image, 0, 0, 0, nullptr, CopyDirection::FromOther),
        ImageOk);
    expectCopied(*image, *copy, *copy, flatTile(1, 1, 6, 6), flatTile(0, 0, 6, 6), {0}, {0});
    EXPECT_EQ(
        image->copyRegion({0, 0, 0, 0, 5, 1}, *copy, 0, 0, 0, nullptr, CopyDirection::FromOther),
        ImageOk);
    copy->readFailsAtX = 3;
    EXPECT_EQ(
        image->copyRegion(flatTile(0, 0, 2, 2), *copy, 3, 0, 0, nullptr, CopyDirection::FromOther),
        ImageUnusable);
    constexpr std::int32_t big = 0x7FFFFFF0;
    EXPECT_EQ(image->copyRegion({0, 0, 0, big, big, big}, *copy, 0, 0, 0, nullptr,
                                CopyDirection::FromOther),
              ImageUnusable);
}

TEST(PixelAccess, TakesThePixelsTypeOrTheImages) {
    const auto image = makeRef<VectorImage>(4, 4, 1, 3, TypeShort);
    scribble(*image, 2);
    image->at(2, 1).setChannel(1, -300);
    ilPixel pixel = ilPixel::untyped();
    EXPECT_EQ(image->readPixel(2, 1, 0, pixel), ImageOk);
    EXPECT_EQ(pixel, image->at(2, 1));
    ilPixel wide(TypeDouble, 2);
    EXPECT_EQ(image->readPixel(2, 1, 0, wide), ImageOk);
    EXPECT_EQ(wide.channel(1), -300.0);
    wide.setChannel(0, 12.9);
    EXPECT_EQ(image->writePixel(3, 3, 0, wide), ImageOk);
    EXPECT_EQ(image->at(3, 3).channel(0), 12.0);
    EXPECT_EQ(image->at(3, 3).channel(1), -300.0);
}

TEST(LockPages, CopiesPagesAndReportsFailures) {
    const auto image = makeRef<VectorImage>(10, 6, 1, 3, TypeUShort, OrderSeparate);
    scribble(*image, 3);
    image->setPages(4, 4, 1, 1);
    EXPECT_EQ(image->lockPages({}, 0), ImageOk);
    // At the border, inside, channel beyond, place beyond.
    PageLockRequest requests[] = {
        {-1, -1, 0, 0}, {3, 1, 0, 2}, {0, 0, 0, 3}, {10, 0, 0, 0}, {-2, 0, 0, 0}};
    EXPECT_EQ(image->lockPages(requests, LockRead), ImageOk);
    ASSERT_NE(requests[0].page, nullptr);
    ASSERT_NE(requests[1].page, nullptr);
    for (int i = 2; i < 5; ++i) {
        EXPECT_EQ(requests[i].page, nullptr) << i;
        EXPECT_EQ(requests[i].status, ImageOk) << i;
    }
    const auto value = [](const ilPage* page, int x, int y) {
        std::uint16_t v;
        std::memcpy(&v, page->data() + (y * 4 + x) * 2, 2);
        return static_cast<double>(v);
    };
    EXPECT_EQ(value(requests[0].page, 0, 3), image->fill().channel(0));
    EXPECT_EQ(value(requests[0].page, 1, 1), image->at(0, 0).channel(0));
    EXPECT_EQ(value(requests[1].page, 2, 3), image->at(5, 4).channel(2));
    image->unlockPages(requests);
    EXPECT_EQ(requests[1].page, nullptr);

    image->readFailsAtX = 3;
    EXPECT_EQ(image->lockPages(requests, LockRead), ImageUnusable);
    EXPECT_EQ(requests[1].status, ImageUnusable);
    EXPECT_EQ(requests[1].page, nullptr);
    EXPECT_NE(requests[0].page, nullptr);
    image->unlockPages(requests);
}

TEST(LockRegion, LocksThePagesOfABox) {
    const auto image = makeRef<VectorImage>(10, 6, 1, 3, TypeUChar, OrderSeparate);
    image->setPages(4, 4, 1, 0);
    const auto all = image->lockRegion({-5, -5, 0, 100, 100, 1}, nullptr, LockWrite | 0xC00);
    ASSERT_NE(all, nullptr);
    EXPECT_EQ(all->pages().size(), 3u * 2 * 3);
    EXPECT_EQ(image->refCount(), 2u);

    const std::int32_t list[] = {2};
    ilImageConfig config(TypeAny, OrderAny, 1);
    config.channelList = list;
    config.coordSpace = SpaceUpperRight;
    const auto part = image->lockRegion(flatTile(0, 0, 1, 1), &config, LockRead);
    ASSERT_EQ(part->pages().size(), 1u);
    EXPECT_EQ(part->pages()[0].x, 8);
    EXPECT_EQ(part->pages()[0].y, 4);
    EXPECT_EQ(part->pages()[0].c, 2);
    EXPECT_EQ(image->lockRegion(flatTile(20, 0, 5, 5), nullptr, LockRead)->pages().size(), 0u);
    const std::int32_t none[] = {7};
    config.channelList = none;
    EXPECT_EQ(image->lockRegion(flatTile(0, 0, 5, 5), &config, LockRead)->pages().size(), 0u);

    image->readFailsAtX = 4;
    const auto failed = image->lockRegion(flatTile(0, 0, 10, 6), nullptr, LockRead);
    ASSERT_NE(failed, nullptr);
    EXPECT_EQ(failed->result(), ImageUnusable);
    for (const PageLockRequest& request : failed->pages()) EXPECT_EQ(request.page, nullptr);
}

class SpoiledPage final : public ilPage {
  public:
    using ilPage::ilPage;
    void spoil() { invalidate(); }
};

TEST(Page, AnInvalidPageHasNoData) {
    std::uint8_t byte = 1;
    SpoiledPage page(1, 2, 3, 4, &byte);
    EXPECT_EQ(page.data(), &byte);
    EXPECT_EQ(page.c, 4);
    page.spoil();
    EXPECT_FALSE(page.isValid());
    EXPECT_EQ(page.data(), nullptr);
    EXPECT_EQ(static_cast<std::uint32_t>(page.y), 0xDEADBEEFu);
    const ilImagePage owner(0, 0, 0, 0, 100);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(owner.data()) % 64, 0u);
    EXPECT_EQ(ilImagePage(0, 0, 0, 0, 0).data(), nullptr);
}

}  // namespace
}  // namespace brushwork
