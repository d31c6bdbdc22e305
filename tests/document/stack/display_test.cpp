#include <gtest/gtest.h>

#include <algorithm>

#include "blending/paint/soft_paint_ops.h"
#include "document/stack/blend_run.h"
#include "document/stack/naive_compositor.h"
#include "document/stack/random_edits.h"
#include "document/stack/stack_raster.h"
#include "document/stack/view_host.h"
#include "image/cache/smart_image_cache.h"

namespace brushwork::test {
namespace {

std::int32_t addNoise(LayerStack& stack, Dice& dice, const ilTile& box) {
    const Ref<ilSmartImage> image = noise(4, box, dice);
    stack::NewLayer layer;
    layer.color = image.get();
    layer.at = stack.layerCountTotal(true);
    return stack.addLayer(layer);
}

TEST(Display, ScaledViewsShowThePlaneScaled) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        ViewHost host(300, 280);
        const Ref<LayerStack> stack(new LayerStack(0, 0, 0, 0));
        ASSERT_EQ(stack->width(), 300);
        static constexpr float scales[] = {1.0f, 0.5f, 0.37f, 1.7f, 2.0f};
        host.view[0] = static_cast<float>(pick(dice, -30, 90));
        host.view[1] = static_cast<float>(pick(dice, -30, 90));
        host.view[2] = scales[seed % std::size(scales)];
        host.view[3] = host.view[4] = static_cast<float>(pick(dice, 0, 2));
        DisplayTarget& display = stack->parts().display;
        display.offscreen = true;
        display.width = 200;
        display.height = 150;
        addNoise(*stack, dice, flatTile(0, 0, 300, 280));
        RandomEdits edits(*stack, dice);
        for (int n = 0; n < 6; ++n) {
            edits.edit();
            ilImage* const shown = stack->renderDisplay(true);
            ASSERT_NE(shown, nullptr);
            const ilTile screen = flatTile(0, 0, 200, 150);
            const auto is = bytesOf(shown, screen);
            // All of it at once, from the plane that the host has.
            const Ref<ilSPMemoryImg> plane(
                new ilSPMemoryImg(host.pixels.data(), 300, 280, 1, 4, TypeUChar, OrderInterleaved));
            const auto mode = host.view[3] >= 1.0f ? SampleMode::Bilinear : SampleMode::Nearest;
            plane->setScale(host.view[2], host.view[2]);
            plane->setSampleModes(mode, mode);
            const auto wide = static_cast<std::int32_t>(300.0f * host.view[2] + 2.0f);
            const Ref<ilSPMemoryImg> scaled(new ilSPMemoryImg(wide, wide, 4));
            scaled->fillRegion(scaled->box(), ilPixel(TypeUChar, 4));
            plane->scaleAllInto(scaled->scaledTarget());
            const auto all = bytesOf(scaled.get(), scaled->box());
            const auto width = static_cast<std::int32_t>(static_cast<float>(300) * host.view[2]);
            const auto height = static_cast<std::int32_t>(static_cast<float>(280) * host.view[2]);
            for (std::int32_t y = 0; y < 150; ++y)
                for (std::int32_t x = 0; x < 200; ++x) {
                    const std::int32_t px = x + static_cast<std::int32_t>(host.view[0]);
                    const std::int32_t py = y + static_cast<std::int32_t>(host.view[1]);
                    if (px < 0 || py < 0 || px >= width || py >= height) continue;
                    const auto at = static_cast<std::size_t>(4 * (y * 200 + x));
                    const auto from = static_cast<std::size_t>(4 * (py * wide + px));
                    ASSERT_TRUE(std::equal(is.begin() + static_cast<std::ptrdiff_t>(at),
                                           is.begin() + static_cast<std::ptrdiff_t>(at) + 4,
                                           all.begin() + static_cast<std::ptrdiff_t>(from)))
                        << "edit " << n << " at " << x << ", " << y << " scale " << host.view[2];
                }
        }
        edits.finish();
        EXPECT_GT(host.presented, 0);
    }
}

// Without the selection and the tints of masks. Layers above the active one are laid over the rest
// together where the screen does so, too.
TEST(Display, TheFlatImageIsTheLayersAlone) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<LayerStack> stack(new LayerStack(0, 0, 280, 150));
        RandomEdits edits(*stack, dice);
        edits.build(7);
        stack->addRectToSelection(anyBox(dice));
        const ilTile box = stack->imagePlane()->box();
        for (int index = stack->layerCountTotal(true) + 1; index > 0; --index) {
            stack->setActiveIndex(index, pick(dice, 0, 1) == 0, false, true);
            stack->present();
            const auto shown = bytesOf(stack->imagePlane(), box);
            const Ref<ilSPMemoryImg> flat = stack->flatImage();
            ASSERT_EQ(bytesOf(stack->imagePlane(), box), shown);
            ASSERT_EQ(difference(bytesOf(flat.get(), box), naiveFlatPicture(*stack), 4, box), "")
                << "active " << index;
        }
    }
}

// What lies beyond all content is drawn, too, where a layer has it.
TEST(Display, ComposedLayersKeepWhatLiesAroundThem) {
    int covering = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<LayerStack> stack(new LayerStack(0, 0, 330, 290));
        RandomEdits edits(*stack, dice);
        edits.build(9);
        stack->setBackground({0.0f, 0.0f, 0.0f, 0.0f});
        std::vector<Layer*> layers;
        std::vector<float> opacities;
        for (Layer* layer = stack->parts().list.first.get(); layer; layer = layer->next.get()) {
            if (!layer->isDrawable() || layer->isPassThrough()) continue;
            layers.push_back(layer);
            opacities.push_back(layer->opacity());
        }
        for (int index = stack->layerCountTotal(false); index > 0; --index)
            if (Layer* const layer = stack->layerByIndex(index, false); layer->isPassThrough())
                layer->setVisible(false);
        const Ref<ilSmartImage> image = stack->composeLayers(layers, opacities);
        const ilTile box = stack->imagePlane()->box();
        ASSERT_EQ(difference(bytesOf(image.get(), box), naivePlainPicture(*stack), 4, box), "");
        covering += image->fill() != ilPixel(TypeUChar, 4);
    }
    EXPECT_GT(covering, 3);
}

// Pages that hide all below them are shared with the composites, and what is painted on the layer
// later is not.
TEST(Display, OpaquePagesHideWhatLiesBelow) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<LayerStack> stack(new LayerStack(0, 0, 400, 300));
        const ilTile box = stack->imagePlane()->box();
        for (int n = 0; n < 6; ++n) {
            const Ref<ilSmartImage> image = noise(4, anyBox(dice), dice);
            for (int m = pick(dice, 0, 3); m > 0; --m) {
                const ilTile pages =
                    flatTile(128 * pick(dice, -1, 2), 128 * pick(dice, -1, 2),
                             128 * pick(dice, 1, 2), 128 * pick(dice, 1, 2) - pick(dice, 0, 1));
                if (pick(dice, 0, 1) == 0) paintNoise(*image, pages, dice);
                const Ref<PaintOps> painter(new SoftPaintOps(image.get()));
                painter->setBlendFactors(FactorOne, FactorOne);
                painter->fillRegion(pages, stack::pixelOf({0.2f, 0.1f, 0.0f, 1.0f}, 4));
            }
            stack::NewLayer layer;
            layer.color = image.get();
            layer.at = n;
            layer.x = pick(dice, 0, 2) == 0 ? pick(dice, -90, 90) : 128 * pick(dice, -1, 1);
            const std::int32_t id = stack->addLayer(layer);
            if (pick(dice, 0, 3) == 0) stack->setOpacity(id, 0.5f);
            if (pick(dice, 0, 3) == 0) stack->setBlendMode(id, 1);
        }
        for (int n = 0; n < 6; ++n) {
            stack->setActiveIndex(pick(dice, 1, 6), true, false, true);
            stack->present();
            ASSERT_EQ(difference(bytesOf(stack->imagePlane(), box), naivePicture(*stack), 4, box),
                      "");
            Layer& painted = *stack->layerByIndex(pick(dice, 1, 6), true);
            const ilTile dab = anyBox(dice, 60);
            paintNoise(*painted.smartColor(), dab, dice);
            stack->accumulateDirty(dab, painted);
        }
    }
}

// A change that claims to reach everywhere is remembered where it can show.
TEST(Display, VastChangesAreRememberedInFewTiles) {
    Dice dice(4);
    const Ref<LayerStack> stack(new LayerStack(0, 0, 300, 200));
    const std::int32_t ids[] = {addNoise(*stack, dice, flatTile(0, 0, 300, 200))};
    LayerGroup* const group = stack->groupById(stack->makeGroupFrom(ids, false));
    ASSERT_NE(group, nullptr);
    stack->setBlendMode(group->id(), 0);
    stack->present();
    Layer& layer = *stack->layerById(ids[0]);
    paintNoise(*layer.smartColor(), flatTile(20, 30, 200, 100), dice);
    stack->accumulateDirty(flatTile(-1000000, -1000000, 2000000000, 2000000000), layer);
    stack->invalidateRect(flatTile(-1000000, -1000000, 2000000000, 2000000000));
    EXPECT_LT(group->dirtyTiles().cells().size(), 5000u);
    EXPECT_LT(stack->parts().damage.tiles.cells().size(), 20u);
    stack->present();
    const ilTile box = stack->imagePlane()->box();
    EXPECT_EQ(difference(bytesOf(stack->imagePlane(), box), naivePicture(*stack), 4, box), "");
}

TEST(Display, OneDirtyTileOfManyLayersTakesThreeBlends) {
    Dice dice(1);
    const Ref<LayerStack> stack(new LayerStack(0, 0, 512, 512));
    for (int n = 0; n < 50; ++n) addNoise(*stack, dice, flatTile(0, 0, 512, 512));
    stack->setActiveIndex(20, true, false, true);
    stack->present();
    const auto blendsOf = [&] {
        const std::uint64_t before = blendRunCount();
        stack->accumulateDirty(flatTile(128, 128, 128, 128), *stack->activeLayer());
        stack->present();
        return blendRunCount() - before;
    };
    EXPECT_EQ(blendsOf(), 3u);
    // Above a layer of another mode each layer is blended by itself.
    stack->setBlendMode(stack->idOfIndex(22, true), 1);
    EXPECT_EQ(blendsOf(), 2u + 30u);
}

TEST(Display, CopyingADocumentTakesNoPage) {
    Dice dice(2);
    const Ref<LayerStack> stack(new LayerStack(0, 0, 400, 400));
    for (int n = 0; n < 50; ++n) addNoise(*stack, dice, anyBox(dice));
    stack->present();
    const auto before = SmartImageCache::instance().counts().usedBytes;
    const std::uint32_t pages = smartPageCount();
    {
        const Ref<LayerStack> copy(new LayerStack(*stack));
        ASSERT_EQ(copy->layerCount(), stack->layerCount());
        EXPECT_EQ(SmartImageCache::instance().counts().usedBytes, before);
        // Of an image that shares all, only the page that stands for what nobody wrote is its own.
        EXPECT_LE(smartPageCount(), pages + 3 * 60);
        EXPECT_EQ(bytesOf(copy->layerByIndex(9, true)->colorImageRef()),
                  bytesOf(stack->layerByIndex(9, true)->colorImageRef()));
    }
    EXPECT_EQ(smartPageCount(), pages);
}

TEST(Display, CompositingWaitsWhileItIsLocked) {
    Dice dice(3);
    const Ref<LayerStack> stack(new LayerStack(0, 0, 200, 200));
    for (int n = 0; n < 3; ++n) addNoise(*stack, dice, flatTile(0, 0, 200, 200));
    stack->setActiveIndex(2, true, false, true);
    stack->present();
    const ilTile box = stack->imagePlane()->box();
    const auto shown = bytesOf(stack->imagePlane(), box);
    const ilSmartImage* const above = stack->parts().caches.above.get();
    stack->lockCompositing();
    stack->setOpacity(stack->idOfIndex(3, true), 0.3f);
    stack->refreshAbove(true);
    stack->present();
    EXPECT_EQ(stack->parts().caches.above.get(), above);
    EXPECT_EQ(bytesOf(stack->imagePlane(), box), shown);
    stack->unlockCompositing();
    stack->present();
    EXPECT_EQ(difference(bytesOf(stack->imagePlane(), box), naivePicture(*stack), 4, box), "");
    EXPECT_NE(bytesOf(stack->imagePlane(), box), shown);
}

// Each value comes back in proportion to what the selection leaves out; nothing else changes.
TEST(Display, PaintingThroughASoftSelectionTouchesNothingOutsideIt) {
    std::size_t painted = 0;
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const Ref<LayerStack> stack(new LayerStack(0, 0, 290, 270));
        addNoise(*stack, dice, anyBox(dice));
        Layer& layer = *stack->activeLayer();
        stack->setPosition(layer.id(), static_cast<float>(pick(dice, -40, 40)), 7.0f, true, true);
        const Ref<ilSmartImage> soft = noise(1, anyBox(dice), dice);
        stack->selectImage(*soft);
        ASSERT_NE(stack->paintMask(), nullptr);
        const auto before = bytesOf(layer.colorImageRef());
        PaintOps* const painter = stack->paintOps();
        const bool batch = pick(dice, 0, 1) == 0;
        if (batch) painter->beginAccess();
        painter->setBlendFactors(pairOver.source, pairOver.target);
        for (int n = 0; n < 3; ++n) {
            const Ref<ilSmartImage> picture = noise(4, flatTile(0, 0, 90, 70), dice);
            painter->drawImage(picture.get(), pick(dice, -120, 100), pick(dice, -120, 100));
        }
        if (batch) painter->endAccess();
        const auto after = bytesOf(layer.colorImageRef());
        ilTile there = frame;
        there.x += layer.offsetXInt();
        there.y += layer.offsetYInt();
        const auto free = bytesOf(soft.get(), there);
        for (std::size_t n = 0; n < after.size(); ++n) {
            if (free[n / 4] == 0)
                ASSERT_EQ(after[n], before[n]) << n;
            else if (after[n] != before[n])
                ++painted;
        }
    }
    EXPECT_GT(painted, 100000u);
}

}  // namespace
}  // namespace brushwork::test
