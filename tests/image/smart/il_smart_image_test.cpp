#include "image/smart/il_smart_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "foundation/services/log.h"
#include "image/cache/cache_rig.h"
#include "image/cache/smart_image_cache.h"
#include "image/memory/image_health.h"
#include "image/memory/memory_manager.h"
#include "image/smart/smart_alpha.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {
namespace {

using test::Manager;
using testing::ElementsAreArray;

constexpr std::uint32_t red = 0xFF0000FF;

ilPixel pixelOf(std::uint32_t value, std::int32_t channels = 4) {
    return ilPixel(TypeUChar, channels, &value);
}

Ref<ilSmartImage> filled(std::uint32_t fill, std::int32_t channels = 4) {
    return Ref<ilSmartImage>(new ilSmartImage(pixelOf(fill, channels)));
}

void put(ilSmartImage& image, const ilTile& box, std::uint32_t value) {
    const std::vector<std::uint32_t> words(static_cast<std::size_t>(box.nx * box.ny), value);
    std::vector<std::uint8_t> bytes(words.size(), static_cast<std::uint8_t>(value));
    const void* const data = image.channels() == 4 ? static_cast<const void*>(words.data())
                                                   : static_cast<const void*>(bytes.data());
    ASSERT_EQ(image.writeRegion(box, data, box), ImageOk);
}

ilTile boundsOf(ilSmartImage& image) {
    ilTile box;
    image.bounds(box);
    return box;
}

SmartImageCache::Counts counts() {
    return SmartImageCache::instance().counts();
}

// Runs with a fresh failure flag and leaves no page and no block behind.
class SmartImageTest : public testing::TestWithParam<Manager> {
  protected:
    void SetUp() override {
        clearImageFailure();
        pages_ = smartPageCount();
        if (GetParam() == Manager::On) BworkMemory::instance().enable(true);
    }
    void TearDown() override {
        EXPECT_EQ(smartPageCount(), pages_);
        EXPECT_EQ(imageFailure(), 0);
        if (GetParam() == Manager::Off) return;
        EXPECT_TRUE(BworkMemory::instance().reset());
    }

  private:
    std::uint32_t pages_ = 0;
};

using SmartImage = SmartImageTest;

TEST_P(SmartImage, CostsWhatItHolds) {
    const auto start = counts();
    const auto layer = filled(0);
    EXPECT_EQ(layer->fillRegion(flatTile(-300, 0, 5000, 5000), pixelOf(red)), ImageOk);
    // Rims of the box, not on page boundaries, are the only pages with memory.
    const auto rims = counts().allocated - start.allocated;
    EXPECT_LE(rims, 40u + 40u + 40u + 40u);

    const auto uniform = filled(0);
    EXPECT_EQ(uniform->fillRegion(flatTile(-256, 0, 5120, 5120), pixelOf(red)), ImageOk);
    const Ref<ilSmartImage> child(new ilSmartImage(uniform.get()));
    EXPECT_EQ(child->getPixel(7, 7), red);
    const Ref<ilSmartImage> copy = filled(0);
    EXPECT_EQ(copy->copyRegion(flatTile(0, 0, 2560, 2560), *layer, 0, 128, 0, nullptr,
                               CopyDirection::FromOther),
              ImageOk);
    EXPECT_EQ(counts().allocated - start.allocated, rims);

    child->setPixel(7, 7, 0x01020304);
    EXPECT_EQ(counts().allocated - start.allocated, rims + 1);
    EXPECT_EQ(child->getPixel(7, 7), 0x01020304u);
    EXPECT_EQ(child->getPixel(8, 7), red);
    EXPECT_EQ(uniform->getPixel(7, 7), red);
    EXPECT_TRUE((*uniform->pages().pageRef(0, 0, false))->isSolid());

    EXPECT_EQ(copy->copyRegion(flatTile(0, 0, 256, 256), *child, 127, 0, 0, nullptr,
                               CopyDirection::FromOther),
              ImageOk);
    EXPECT_EQ(counts().allocated - start.allocated, rims + 5);
}

TEST_P(SmartImage, ThreeHoldersShareUntilOneWrites) {
    const auto first = filled(0);
    put(*first, flatTile(0, 0, 128, 128), red);
    const auto second = first->clone();
    const auto third = first->clone();
    const auto pageOf = [](ilSmartImage& image) { return image.pages().findSlot(0, 0)->get(); };
    ASSERT_EQ(pageOf(*first), pageOf(*second));
    first->setPixel(3, 3, 5);
    EXPECT_NE(pageOf(*first), pageOf(*second));
    EXPECT_EQ(pageOf(*second), pageOf(*third));
    EXPECT_EQ(second->getPixel(3, 3), red);
}

TEST_P(SmartImage, BeyondTheLimitIsFillAndStaysSo) {
    const auto image = filled(0x0A0B0C0D);
    image->setPixel(102400, 5, red);
    image->setPixel(-102401, 5, red);
    image->setPixel(102399, 5, red);
    EXPECT_EQ(image->getPixel(102400, 5), 0x0A0B0C0Du);
    EXPECT_EQ(image->getPixel(102399, 5), red);
    EXPECT_EQ(boundsOf(*image), flatTile(102399, 5, 1, 1));
    const SmartPageRef once = *image->pages().pageRef(102400 + 128, 0, true);
    const SmartPageRef again = *image->pages().pageRef(102400 + 128, 0, true);
    EXPECT_NE(once.get(), again.get());
    // Boxes that overflow are cut.
    const ilTile far{2147483647 - 10, 0, 0, 10, 10, 1};
    EXPECT_EQ(image->fillRegion(far, pixelOf(red)), ImageOk);
    EXPECT_EQ(image->fillRegion(flatTile(-2147483647, 0, 10, 10), pixelOf(red)), ImageOk);
    EXPECT_EQ(boundsOf(*image), flatTile(102399, 5, 1, 1));
}

TEST_P(SmartImage, ShrinksToNothingAndPastEqualSums) {
    const auto image = filled(2, 1);
    put(*image, flatTile(-50, -50, 400, 300), 2);
    image->shrinkBounds();  // one channel with a fill: only if forced
    EXPECT_EQ(boundsOf(*image), flatTile(-50, -50, 400, 300));
    image->shrinkBounds(true);
    EXPECT_EQ(boundsOf(*image), emptyTile);
    EXPECT_EQ(image->sizeX(), 1);
    EXPECT_EQ(image->sizeY(), 1);

    // The top row holds 1 3 1 3 ... after its start: it passes.
    const auto tricky = filled(0x02020202);
    put(*tricky, flatTile(0, 0, 128, 64), 0x05050505);
    std::vector<std::uint32_t> row(128);
    for (std::size_t n = 0; n < row.size(); ++n) row[n] = n % 2 ? 0x01010101u : 0x03030303u;
    const ilTile top = flatTile(0, 64, 128, 1);
    ASSERT_EQ(tricky->writeRegion(top, row.data(), top), ImageOk);
    tricky->shrinkBounds();
    EXPECT_EQ(boundsOf(*tricky), flatTile(0, 0, 128, 64));
    EXPECT_EQ(tricky->getPixel(1, 64), 0x02020202u);
    row[127] ^= 1;
    ASSERT_EQ(tricky->writeRegion(top, row.data(), top), ImageOk);
    tricky->shrinkBounds();
    EXPECT_EQ(boundsOf(*tricky), flatTile(0, 0, 128, 65));
}

TEST_P(SmartImage, KeepsFixedBounds) {
    const auto image = filled(0);
    image->setFixedBounds(flatTile(10, 10, 50, 60));
    put(*image, flatTile(0, 0, 500, 500), red);
    EXPECT_EQ(boundsOf(*image), flatTile(10, 10, 50, 60));
    EXPECT_EQ(image->sizeX(), 60);
    EXPECT_EQ(image->sizeY(), 70);
    const Ref<ilSmartImage> child(new ilSmartImage(image.get()));
    EXPECT_TRUE(child->hasFixedBounds());
    child->setPixel(300, 300, red);
    EXPECT_EQ(boundsOf(*child), flatTile(10, 10, 50, 60));
}

TEST_P(SmartImage, HeirsOutliveTheirParent) {
    const auto grand = filled(0);
    put(*grand, flatTile(0, 0, 300, 300), 1);
    Ref<ilSmartImage> parent(new ilSmartImage(grand.get()));
    put(*parent, flatTile(0, 0, 128, 128), red);
    const Ref<ilSmartImage> one(new ilSmartImage(parent.get()));
    const Ref<ilSmartImage> two(new ilSmartImage(parent.get()));
    one->setPixel(1, 1, 7);
    EXPECT_EQ(parent->children().count(), 2u);
    ilSmartImage* const raw = parent.detach();
    for (auto holders = raw->refCount(); holders > 0; --holders) raw->release();
    for (ilSmartImage* heir : {one.get(), two.get()}) {
        EXPECT_EQ(heir->source(), grand.get());
        EXPECT_EQ(heir->getPixel(2, 2), red);
        EXPECT_EQ(heir->getPixel(200, 200), 1u);
    }
    EXPECT_EQ(one->getPixel(1, 1), 7u);
    EXPECT_EQ(two->getPixel(1, 1), red);
    EXPECT_EQ(grand->children().count(), 2u);
    EXPECT_FALSE(Ref<ilSmartImage>(filled(0))->collapse());
    EXPECT_EQ(filled(0)->pushToSource(), ImageNotOneParent);
}

TEST_P(SmartImage, PushesErasuresAndCopies) {
    const auto parent = filled(0);
    put(*parent, flatTile(0, 0, 256, 128), red);
    const Ref<ilSmartImage> child(new ilSmartImage(parent.get()));
    const auto other = filled(0);
    put(*other, flatTile(0, 0, 128, 128), 9);
    ASSERT_EQ(child->copyRegion(flatTile(0, 0, 128, 128), *other, 0, 0, 0, nullptr,
                                CopyDirection::FromOther),
              ImageOk);
    ASSERT_EQ(child->fillRegion(flatTile(128, 0, 128, 128), pixelOf(0)), ImageOk);
    EXPECT_EQ(boundsOf(*child), flatTile(0, 0, 128, 128));
    ASSERT_EQ(child->pushToSource(), ImageOk);
    EXPECT_EQ(parent->getPixel(5, 5), 9u);
    EXPECT_EQ(parent->getPixel(200, 5), 0u);
    EXPECT_EQ(boundsOf(*parent), boundsOf(*child));
}

TEST_P(SmartImage, ReadsAnotherKindOfParentWhenAsked) {
    const Ref<ilSPMemoryImg> memory(new ilSPMemoryImg(200, 100, 4));
    std::memset(memory->data(), 0x33, 200 * 100 * 4);
    const Ref<ilSmartImage> image(new ilSmartImage(memory.get()));
    EXPECT_EQ(boundsOf(*image), flatTile(0, 0, 200, 100));
    memory->data()[0] = 0x44;
    EXPECT_EQ(image->getPixel(0, 0), 0x33333344u);
    memory->data()[0] = 0x55;
    EXPECT_EQ(image->getPixel(0, 0), 0x33333344u);
    image->setPixel(199, 99, red);
    EXPECT_EQ(image->pushToSource(), ImageOk);
    std::uint32_t last = 0;
    std::memcpy(&last, memory->data() + (100 * 200 - 1) * 4, sizeof last);
    EXPECT_EQ(last, red);

    const Ref<ilMemoryImg> bits(new ilMemoryImg(16, 16, 1, 1, TypeBit, OrderInterleaved));
    EXPECT_EQ(Ref<ilSmartImage>(new ilSmartImage(bits.get()))->reset(), ImageUnusable);
}

// Of a picture of an image that has another kind of parent, pages that nobody has read yet survive
// what the image writes to that parent.
TEST_P(SmartImage, PicturesKeepTheirPagesWhenTheParentIsWritten) {
    const Ref<ilSPMemoryImg> memory(new ilSPMemoryImg(256, 128, 1));
    std::memset(memory->data(), 0x33, 256 * 128);
    const Ref<ilSmartImage> image(new ilSmartImage(memory.get()));
    const Ref<ilSmartImage> child(new ilSmartImage(image.get()));
    const Ref<ilSmartImage> before = image->clone();
    const auto other = filled(0x44, 1);
    const ilTile left = flatTile(0, 0, 128, 128);
    ASSERT_EQ(image->copyRegion(left, *other, 0, 0, 0, nullptr, CopyDirection::FromOther), ImageOk);
    // One way to write to the memory is the image's own push, another that of a child beneath which
    // the image has been taken out.
    ASSERT_EQ(image->pushToSource(), ImageOk);
    EXPECT_EQ(memory->data()[0], 0x44);
    EXPECT_EQ(before->getPixel(0, 0), 0x33u);
    ASSERT_TRUE(child->collapse());
    put(*child, flatTile(130, 3, 1, 1), 0x55);
    ASSERT_EQ(child->pushToSource(), ImageOk);
    EXPECT_EQ(memory->data()[3 * 256 + 130], 0x55);
    EXPECT_EQ(before->getPixel(130, 3), 0x33u);
}

// Of a copy to its parent the heir keeps what was read; what the limit cuts off was not.
TEST_P(SmartImage, HeirsKeepOnlyWhatACopyReads) {
    const auto parent = filled(0);
    const std::int32_t edge = coordinateLimit - 128;
    put(*parent, flatTile(edge - 128, 0, 256, 128), 3);
    const Ref<ilSmartImage> child(new ilSmartImage(parent.get()));
    const ilTile across = flatTile(edge - 40, 10, 80, 20);
    ASSERT_EQ(child->copyRegion(across, *parent, coordinateLimit - 40, 10, 0, nullptr,
                                CopyDirection::ToOther),
              ImageOk);
    put(*parent, flatTile(edge - 128, 0, 256, 128), 4);
    EXPECT_EQ(child->getPixel(edge - 1, 10), 3u);
    EXPECT_EQ(child->getPixel(edge, 10), 4u);
}

// A parent that has grown shows more on a page than its child's bounds held; what a reader has seen
// there outlives a trim on another side.
TEST_P(SmartImage, BoundsHoldWhatAnInheritedPageShows) {
    const auto parent = filled(0);
    put(*parent, flatTile(0, 0, 100, 100), red);
    const Ref<ilSmartImage> child(new ilSmartImage(parent.get()));
    put(*parent, flatTile(0, 100, 100, 20), red);
    put(*child, flatTile(256, 0, 128, 128), red);
    EXPECT_EQ(child->getPixel(50, 110), red);
    EXPECT_TRUE(boundsOf(*child).contains(flatTile(0, 100, 100, 20)));
    child->fillRegion(flatTile(256, 0, 128, 128), pixelOf(0));
    EXPECT_EQ(boundsOf(*child).endX(), 128);
    EXPECT_EQ(child->getPixel(50, 110), red);
}

TEST_P(SmartImage, TurnsToOtherSpaces) {
    const auto image = filled(0);
    for (std::int32_t y = 0; y < 3; ++y)
        for (std::int32_t x = 0; x < 4; ++x)
            image->setPixel(x, y, static_cast<std::uint32_t>(y * 4 + x + 1));
    const Ref<ilSPMemoryImg> plain(new ilSPMemoryImg(4, 3, 4));
    const ilTile all = flatTile(0, 0, 4, 3);
    ASSERT_EQ(image->readRegion(all, plain->data(), all), ImageOk);
    for (std::int32_t space = SpaceUpperLeft; space <= SpaceLeftLower; ++space) {
        ilImageConfig config;
        config.coordSpace = space;
        const ilTile part = flatTile(1, 0, 2, 3);
        std::vector<std::uint32_t> got(6), wanted(6);
        EXPECT_EQ(image->readRegion(part, got.data(), part, &config), ImageOk);
        EXPECT_EQ(plain->readRegion(part, wanted.data(), part, &config), ImageOk);
        EXPECT_THAT(got, ElementsAreArray(wanted)) << "space " << space;
        const auto written = filled(0);
        put(*written, all, 0);
        const Ref<ilSPMemoryImg> plainWritten(new ilSPMemoryImg(4, 3, 4));
        std::memset(plainWritten->data(), 0, 48);
        EXPECT_EQ(written->writeRegion(part, got.data(), part, &config), ImageOk);
        EXPECT_EQ(plainWritten->writeRegion(part, got.data(), part, &config), ImageOk);
        std::vector<std::uint32_t> back(12);
        EXPECT_EQ(written->readRegion(all, back.data(), all), ImageOk);
        EXPECT_EQ(std::memcmp(back.data(), plainWritten->data(), 48), 0) << "space " << space;
    }
}

TEST_P(SmartImage, LocksKeepTheirPage) {
    const auto image = filled(0);
    put(*image, flatTile(0, 0, 128, 128), red);
    const auto holder = image->clone();
    PageLockRequest request;
    request.x = 5;
    request.y = 127;
    ASSERT_EQ(image->lockPages({&request, 1}, LockWrite), ImageOk);
    std::uint8_t* const data = request.page->data();
    EXPECT_EQ(request.page->x, 0);
    // Everything else may go; and who copies the page gets its pixels, not the page.
    SmartImageCache::instance().setCeiling(65536);
    const auto busy = filled(0);
    for (std::int32_t n = 0; n < 20; ++n) busy->setPixel(n * 128, 0, red);
    const auto copy = image->clone();
    data[0] = 77;
    EXPECT_EQ(request.page->data(), data);
    EXPECT_EQ(image->getPixel(0, 0) & 0xFF, 77u);
    EXPECT_EQ(copy->getPixel(0, 0), red);
    EXPECT_EQ(holder->getPixel(0, 0), red);
    image->unlockPages({&request, 1});
    EXPECT_EQ(request.page, nullptr);
    SmartImageCache::instance().setCeiling(0);

    // A reader of a uniform image gets an address, and the image is as cheap as before.
    const auto plain = filled(9);
    PageLockRequest requests[2];
    ASSERT_EQ(plain->lockPages(requests, LockRead), ImageOk);
    EXPECT_EQ(requests[0].page->data(), requests[1].page->data());
    EXPECT_EQ(requests[0].page->data()[4 * 128 * 128 - 4], 9);
    plain->unlockPages(requests);
    EXPECT_EQ(plain->pages().findSlot(0, 0)->get(), plain->pages().defaultPage().get());
    EXPECT_EQ(counts().locked, 0);
}

TEST_P(SmartImage, TellsOfDamageOnce) {
    std::string text;
    setLogSink([&](std::string_view piece) { text += piece; });
    {
        const auto image = filled(0);
        // The word that guards the end of the table, found by looking.
        auto* const words = reinterpret_cast<std::uint32_t*>(&image->pages());
        ASSERT_EQ(words[0], brushwork::liveSignature);
        words[0] = 0;
        std::uint32_t pixel = 0;
        const ilTile place = flatTile(0, 0, 1, 1);
        EXPECT_EQ(image->readRegion(place, &pixel, place), ImageUnusable);
        EXPECT_EQ(image->writeRegion(place, &pixel, place), ImageUnusable);
        words[0] = brushwork::liveSignature;
    }
    EXPECT_EQ(text, "SID: ERROR: Invalid ilSmartImage\n");
    // Those without an answer tell it, too; what was locked is unlocked nevertheless.
    for (const bool unlocks : {true, false}) {
        clearImageFailure();
        text.clear();
        const auto image = filled(0);
        const Ref<ilSmartImage> child(new ilSmartImage(image.get()));
        auto* const words = reinterpret_cast<std::uint32_t*>(&child->pages());
        PageLockRequest request;
        ASSERT_EQ(child->lockPages({&request, 1}, LockWrite), ImageOk);
        words[0] = 0;
        ilSIDImage* const source = unlocks ? nullptr : child->source();
        EXPECT_EQ(source, nullptr);
        child->unlockPages({&request, 1});
        EXPECT_EQ(counts().locked, 0);
        words[0] = brushwork::liveSignature;
        EXPECT_EQ(child->source(), image.get());
        EXPECT_EQ(text, "SID: ERROR: Invalid ilSmartImage\n");
    }
    setLogSink({});
    EXPECT_NE(imageFailure(), 0);
    clearImageFailure();
}

// What a question looks at, and what it leaves to be known by the next one.
TEST_P(SmartImage, QuestionsLookNoFurtherThanAsked) {
    const auto image = filled(0);
    const ilTile page = flatTile(0, 0, 128, 128), left = flatTile(0, 0, 64, 128);
    put(*image, left, red);
    EXPECT_EQ(image->alphaClassOf(page, false), AlphaClass::Mixed);
    EXPECT_EQ(image->alphaClassOf(left, true), AlphaClass::Opaque);
    // Half a page says nothing of the whole.
    EXPECT_EQ(image->alphaClassOf(left, false), AlphaClass::Mixed);
    put(*image, flatTile(64, 0, 64, 128), red ^ 1);
    EXPECT_EQ(image->alphaClassOf(page, true), AlphaClass::Opaque);
    EXPECT_EQ(image->alphaClassOf(left, false), AlphaClass::Opaque);
    EXPECT_EQ(image->alphaClassOf(flatTile(0, 0, 129, 128), false), AlphaClass::Mixed);
    EXPECT_EQ(image->alphaClassOf(flatTile(0, 0, 0, 9), true), AlphaClass::NoPage);
    EXPECT_EQ(image->alphaClassOf(flatTile(5000, 0, 9, 9), false), AlphaClass::Clear);
    image->setPixel(1, 1, 0);
    EXPECT_EQ(image->alphaClassOf(page, true), AlphaClass::Mixed);

    put(*image, page, red);
    std::uint32_t value = 0;
    EXPECT_FALSE(image->isSolid(page, value, false));
    EXPECT_TRUE(image->isSolid(page, value, true));
    EXPECT_EQ(value, red);
    while (SmartImageCache::instance().idleStep()) {
    }
    value = 0;
    EXPECT_TRUE(image->isSolid(page, value, false));
    EXPECT_EQ(value, red);
    EXPECT_FALSE(image->isSolid(flatTile(-1, 0, 2, 2), value, true));
}

TEST_P(SmartImage, TracksWhetherWhatIsWrittenHasAKnownAlpha) {
    const auto image = filled(0);
    const ilTile page = flatTile(0, 0, 128, 128);
    image->setPixel(0, 0, red);
    EXPECT_TRUE(image->allOpaqueClass());  // not tracked
    image->setTrackAlpha(true);
    ASSERT_EQ(image->fillRegion(page, pixelOf(red)), ImageOk);
    EXPECT_TRUE(image->allOpaqueClass());
    // Who writes in place is asked when he has done it.
    PageLockRequest request;
    ASSERT_EQ(image->lockPages({&request, 1}, LockWrite), ImageOk);
    request.page->data()[0] = 1;
    image->unlockPages({&request, 1});
    EXPECT_TRUE(image->allOpaqueClass());
    EXPECT_EQ(image->alphaClassOf(page, false), AlphaClass::Opaque);
    ASSERT_EQ(image->lockPages({&request, 1}, LockWrite), ImageOk);
    request.page->data()[3] = 1;
    image->unlockPages({&request, 1});
    EXPECT_FALSE(image->allOpaqueClass());
    image->setTrackAlpha(true);
    put(*image, flatTile(3, 3, 1, 1), red);
    EXPECT_FALSE(image->allOpaqueClass());
    EXPECT_TRUE(Ref<ilSmartImage>(new ilSmartImage(image.get(), {true}))->trackAlpha());
}

TEST_P(SmartImage, GrowsToPagesAroundAMargin) {
    const auto image = filled(0);
    image->growToPages(9);
    EXPECT_EQ(boundsOf(*image), emptyTile);
    put(*image, flatTile(5, 100, 123, 20), red);
    image->growToPages(5);
    EXPECT_EQ(boundsOf(*image), flatTile(0, 0, 256, 128));
    image->growToPages(1);
    EXPECT_EQ(boundsOf(*image), flatTile(-128, -128, 512, 384));
    image->growToPages(2147483647);
    EXPECT_EQ(boundsOf(*image), limitBox);
}

INSTANTIATE_TEST_SUITE_P(Managers, SmartImage, testing::Values(Manager::Off, Manager::On),
                         [](const auto& each) {
                             return each.param == Manager::On ? "ManagerOn" : "ManagerOff";
                         });

TEST(SmartAlpha, ChoosesTheRepair) {
    EXPECT_EQ(SmartAlpha::repairFor(0, 0, 0), AlphaRepair::None);
    EXPECT_EQ(SmartAlpha::repairFor(1, 5, 5), AlphaRepair::Raise);
    EXPECT_EQ(SmartAlpha::repairFor(0, 0, 1), AlphaRepair::Raise);
    EXPECT_EQ(SmartAlpha::repairFor(0, 1, 0), AlphaRepair::Multiply);
    EXPECT_EQ(SmartAlpha::repairFor(0, 1, 1), AlphaRepair::Opaque);
    const auto faultOf = [](std::initializer_list<std::uint8_t> bytes) {
        SmartAlpha seen;
        seen.look(bytes.begin(), bytes.size() / 4);
        return seen.fault();
    };
    EXPECT_EQ(faultOf({9, 9, 9, 9, 0, 0, 0, 0}), AlphaFault::None);
    EXPECT_EQ(faultOf({9, 9, 9, 9, 2, 0, 0, 0}), AlphaFault::Slight);
    EXPECT_EQ(faultOf({9, 9, 9, 9, 3, 0, 0, 0}), AlphaFault::Strong);
    EXPECT_EQ(faultOf({0, 0, 3, 0, 3, 0, 0, 0}), AlphaFault::NoAlpha);
    // Every pair of colour and alpha, against whole-number division.
    for (unsigned colour = 0; colour < 256; ++colour)
        for (unsigned alpha = 0; alpha < 256; ++alpha) {
            std::uint8_t pixel[4] = {static_cast<std::uint8_t>(colour), 0, 255,
                                     static_cast<std::uint8_t>(alpha)};
            SmartAlpha::repair(pixel, 1, AlphaRepair::Multiply);
            // Where the quotient is whole, floats may fall just short of it.
            const unsigned whole = colour * alpha / 255;
            const bool short1 = colour * alpha % 255 == 0 && whole > 0;
            ASSERT_TRUE(pixel[0] == whole || (short1 && pixel[0] == whole - 1))
                << colour << ' ' << alpha;
        }
}

}  // namespace
}  // namespace brushwork
