#include "image/chain/il_image.h"

#include <gtest/gtest.h>

#include <functional>

#include "vector_image.h"

namespace brushwork {
namespace {

using test::VectorImage;

Ref<VectorImage> makeImage(std::int32_t channels = 4, std::int32_t type = TypeUChar) {
    return makeRef<VectorImage>(10, 6, 1, channels, type);
}

TEST(IlImage, EverySetterHasItsBit) {
    struct Case {
        const char* name;
        std::uint32_t bit;
        std::uint32_t altered;  // of the image after the change
        bool tellsChildren;
        std::function<std::int32_t(VectorImage&, int)> set;
    };
    const Case cases[] = {
        {"sizes", 0x1E0, 0x1E0, true, [](auto& i, int v) { return i.setSize(v, 2, 3, 4); }},
        {"x", 0x20, 0x20, true, [](auto& i, int v) { return i.setSizeX(v); }},
        {"y", 0x40, 0x40, true, [](auto& i, int v) { return i.setSizeY(v); }},
        {"z", 0x100, 0x100, true, [](auto& i, int v) { return i.setSizeZ(v); }},
        {"channels", 0x80, 0x80, true, [](auto& i, int v) { return i.setChannels(v); }},
        {"type", 0x4, 0x4, true, [](auto& i, int v) { return i.setDataType(v == 7 ? 4 : 8); }},
        {"order", 0x8, 0x8, true, [](auto& i, int v) { return i.setOrder(v == 7 ? 2 : 4); }},
        {"model", 0x400, 0x400, true, [](auto& i, int v) { return i.setColorModel(v); }},
        {"space", 0x200, 0x200, true, [](auto& i, int v) { return i.setCoordSpace(v); }},
        {"storage", 0x8000, 0x8000, false, [](auto& i, int v) { return i.setStorageMode(v); }},
        {"page", 0x10, 0x10, false, [](auto& i, int v) { return i.setPageSize(v, 9, 1); }},
        {"border", 0x20000, 0x20000, false,
         [](auto& i, int v) { return i.setPageBorder(1, v, 1); }},
        {"fill", 0x4000, 0x4000, true,
         [](auto& i, int v) { return i.setFill(ilPixel(TypeUChar, v)); }},
        {"fill channel", 0x4000, 0x4000, true,
         [](auto& i, int v) { return i.setFillChannel(v, 2); }},
        {"minimum", 0x800, 0x800, true,
         [](auto& i, int v) { return i.setMinValue(ilPixel(TypeFloat, v)); }},
        {"maximum", 0x1000, 0x1000, true,
         [](auto& i, int v) { return i.setMaxValue(ilPixel(TypeFloat, v)); }},
        {"minimum channel", 0x800, 0x800, true, [](auto& i, int v) { return i.setMinValue(v, 3); }},
        {"maximum channel", 0x1000, 0x1000, true,
         [](auto& i, int v) { return i.setMaxValue(v, 0); }},
        {"scale", 0x2000, 0, true, [](auto& i, int v) { return i.setScale(v, 9); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto image = makeImage();
        const auto child = makeImage();
        child->setParent(image.get(), 0);
        // Each of its bits is needed.
        for (std::uint32_t bit = 1; bit < 0x40000; bit <<= 1) {
            if ((c.bit & bit) == 0) continue;
            image->allow(0x3FFFF & ~bit);
            image->reset();
            EXPECT_EQ(c.set(*image, 7), ImageNotAllowed);
            EXPECT_EQ(image->altered(), 0u);
        }
        image->allow(c.bit | AlteredPixels);
        child->reset();
        const std::uint32_t before = image->setFlags();
        EXPECT_EQ(before & c.bit, 0u);
        EXPECT_EQ(c.set(*image, 7), ImageOk);
        EXPECT_EQ(image->altered() & AttributeBits, c.altered);
        EXPECT_EQ(image->setFlags(), before | c.bit);
        EXPECT_EQ(child->altered() != 0, c.tellsChildren);
        child->reset();
        image->reset();
        EXPECT_EQ(c.set(*image, 7), ImageOk);
        EXPECT_EQ(image->altered() | child->altered(), 0u) << "an equal value marks nothing";
        EXPECT_EQ(c.set(*image, 8), ImageOk);
        EXPECT_EQ(child->altered() != 0, c.tellsChildren);
    }
    // An equal value counts as set, all the same.
    const auto image = makeImage();
    image->allow(0x3FFFF);
    image->reset();
    EXPECT_EQ(image->setSizeX(10), ImageOk);
    EXPECT_EQ(image->altered(), 0u);
    EXPECT_NE(image->setFlags() & AlteredSizeX, 0u);
    EXPECT_EQ(image->setFillChannel(1.0, 32), ImageNotAllowed);
}

TEST(IlImage, DefaultFillAndLimits) {
    const auto image = makeImage(4);
    EXPECT_EQ(image->fill().type(), TypeUChar);
    ASSERT_EQ(image->fill().channels(), 4);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(image->fill().data()[i], 0x80);
    EXPECT_EQ(image->getMinValue(), -128.0);
    EXPECT_EQ(image->getMaxValue(7), 255.0);
    EXPECT_EQ(image->scaleMin(), -128.0);

    image->makeChannels(0);
    image->defaultLimits(false);
    EXPECT_EQ(image->getMinValue(0), -128.0);
    EXPECT_EQ(image->getMaxValue(0), -128.0) << "no channels, no range";

    const auto wide = makeImage(2, TypeShort);
    wide->allow(0x3FFFF);
    wide->setMinValue(-5.0, 1);
    EXPECT_EQ(wide->getMinValue(0), -32768.0);
    EXPECT_EQ(wide->getMinValue(1), -5.0);
    EXPECT_EQ(wide->getMinValue(), -32768.0);
    wide->setMaxValue(77.0, -1);
    EXPECT_EQ(wide->getMaxValue(0), 77.0);
    EXPECT_EQ(wide->getMaxValue(), 77.0);
    EXPECT_EQ(wide->scaleMax(), 77.0);
    wide->setScaleFromType(0);
    EXPECT_EQ(wide->scaleMax(), 32767.0);
    wide->setAltered(AlteredPixels);
    EXPECT_EQ(wide->scaleMax(), 32767.0) << "set, so it stays";
    wide->defaultLimits(true);
    EXPECT_EQ(wide->getMaxValue(0), 32767.0);
    EXPECT_EQ(wide->setFlags() & (AlteredMinValue | AlteredMaxValue), 0u);
}

TEST(IlImage, FillFollowsTheImageUnlessSet) {
    const auto image = makeImage(1);
    image->allow(0x3FFFF);
    image->reset();
    image->setChannels(3);
    EXPECT_EQ(image->fill(), ilPixel(TypeUChar, 3, "\x80\x80\x80"));
    image->setDataType(TypeFloat);
    EXPECT_EQ(image->fill().type(), TypeFloat);
    EXPECT_EQ(image->fill().channel(2), 128.0) << "the old value, not the limit's";
    const ilPixel mine(TypeUChar, 2, "\x01\x02");
    image->setFill(mine);
    image->setChannels(4);
    EXPECT_EQ(image->fill(), mine);
}

TEST(IlImage, ColorModelAndChannels) {
    const auto image = makeImage(4);
    image->allow(0x3FFFF);
    image->reset();
    image->makeModel(ColorRGB);
    image->reconcile();
    EXPECT_EQ(image->channels(), 3) << "the model decides";
    EXPECT_EQ(image->pageSize().c, 3);
    image->setChannels(2);
    image->reconcile();
    EXPECT_EQ(image->status(), ImageColorMismatch);
    EXPECT_EQ(image->channels(), 2);
    image->setChannels(3);
    image->reconcile();
    EXPECT_EQ(image->status(), ImageOk);
    image->setOrder(OrderSeparate);
    image->reconcile();
    EXPECT_EQ(image->pageSize().c, 1);
    image->setChannels(4);
    image->chooseModel(true);
    EXPECT_EQ(image->colorModel(), ColorMultiSpectral);
    image->setColorModel(ColorCMYK);
    image->chooseModel(false);
    EXPECT_EQ(image->colorModel(), ColorCMYK);
}

TEST(IlImage, PagesSizesAndClipping) {
    const auto image = makeImage(4, TypeShort);
    image->allow(0x3FFFF);
    image->setPages(5, 3, 1, 1);
    EXPECT_EQ(image->pageBytes(), 5u * 3 * 4 * 2);
    image->setPageSize(7, 3, 1);
    image->setPages(100, 100, 1, 1);
    EXPECT_EQ(image->pageBytes(), 100u * 100 * 4 * 2) << "the helper above sets the fields";
    image->setCoordSpace(SpaceLeftUpper);
    EXPECT_EQ(image->sizeX(), 10);
    EXPECT_EQ(image->width(), 6);
    EXPECT_EQ(image->height(), 10);
    EXPECT_EQ(image->sizeIn(SpaceRightLower), (Extent<std::int32_t>{10, 6}));

    ilTile box{0, 0, 0, 10, 6, 1};
    EXPECT_EQ(image->clip(box), ImageOk);
    box = {-3, 2, 0, 0x7FFFFFFF, 9, 1};
    EXPECT_EQ(image->clip(box, ClipTo::ImageAndBorder), ImageClipped);
    EXPECT_EQ(box, (ilTile{-1, 2, 0, 12, 5, 1}));
    EXPECT_EQ(image->clip(box), ImageClipped);
    EXPECT_EQ(box, (ilTile{0, 2, 0, 10, 4, 1}));
    box = {50, 0, 0, 5, 5, 1};
    EXPECT_EQ(image->clip(box), ImageClipped);
    EXPECT_TRUE(box.isEmpty());
    EXPECT_GE(box.nx, 0);
}

TEST(IlImage, ParentSlotsAndWhatIsNotImplemented) {
    const auto image = makeImage();
    const auto parent = makeImage();
    EXPECT_EQ(image->setParent(parent.get(), 2), ImageNoSuchParent);
    EXPECT_EQ(image->setParent(parent.get(), -1), ImageNoSuchParent);
    EXPECT_EQ(image->setParent(parent.get(), 1), ImageOk);
    EXPECT_EQ(image->parentImage(1), parent.get());
    EXPECT_EQ(image->parentImage(0), nullptr);
    EXPECT_EQ(image->fillRegion(image->box(), ilPixel()), ImageNoFill);
    EXPECT_EQ(image->transferRegion(image->box(), *parent, nullptr), ImageNotAllowed);
    float x = 3.5f, y = -2.0f;
    image->mapToParent(x, y);
    EXPECT_EQ(x, 3.5f);
    EXPECT_EQ(image->isKindOf(ilImage::descriptor), 3);
    EXPECT_STREQ(ilImage::descriptor.name, "Image");
    const ilImageConfig config(*image);
    EXPECT_EQ(config.channels, 4);
    EXPECT_EQ(config.colorModel, ColorRGBA);
    const std::int32_t list[] = {9, 8, 7, 6, 5};
    ilImageConfig mapped(TypeAny, OrderAny, 3, 1);
    EXPECT_EQ(mapped.channelAt(2), 3);
    EXPECT_EQ(mapped.channelAt(3), -1);
    mapped.channelList = list;
    EXPECT_EQ(mapped.channelAt(2), 6);
}

TEST(IlSidImage, SourcesAndCollapse) {
    const auto child = makeImage();
    const auto parent = makeImage();
    const auto grandparent = makeImage();
    EXPECT_LT(child->serial(), parent->serial());
    EXPECT_TRUE(child->isSigned());
    EXPECT_FALSE(child->collapse());
    child->setSource(parent.get());
    child->setSource(parent.get());
    EXPECT_EQ(parent->refCount(), 2u);
    EXPECT_FALSE(child->collapse()) << "the source has no source";
    EXPECT_EQ(child->source(), parent.get());
    EXPECT_EQ(parent->pushes, 0);
    parent->setSource(grandparent.get());
    EXPECT_TRUE(child->collapse());
    EXPECT_EQ(parent->pushes, 1);
    EXPECT_EQ(child->source(), grandparent.get());
    EXPECT_EQ(parent->refCount(), 1u);
    EXPECT_EQ(grandparent->refCount(), 3u);
    child->setSource(nullptr);
    EXPECT_EQ(child->source(), nullptr);
    ilTile tile;
    child->bounds(tile);
    EXPECT_EQ(tile, (ilTile{0, 0, 0, 10, 6, 1}));
}

}  // namespace
}  // namespace brushwork
