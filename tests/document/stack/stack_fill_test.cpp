// Live fills, multi-layer transforms and pixel edits on canvases of several layers.
#include "document/stack/stack_fill.h"

#include <gtest/gtest.h>

#include "document/layer/layer_recipe.h"
#include "document/stack/layer_stack.h"

namespace brushwork::test {
namespace {

constexpr std::int32_t width = 200, height = 150;
constexpr ilTile canvas = flatTile(0, 0, width, height);

// Noise in coarse steps, so that a flood gets somewhere.
Ref<ilSmartImage> terrain(Dice& dice) {
    const Ref<ilSmartImage> image = blank(4);
    for (int n = 0; n < 60; ++n) {
        const auto value = static_cast<std::uint8_t>(12 * pick(dice, 0, 20));
        paintSolid(*image, anyBox(dice, 60), {value, value, value, 255});
    }
    return image;
}

class Filling : public testing::Test {
  protected:
    void begin(Dice& dice) {
        stack_ = Ref<LayerStack>(new LayerStack(0, 0, width, height));
        ids_.clear();
        for (int n = 0; n < 3; ++n) {
            const Ref<ilSmartImage> image = terrain(dice);
            stack::NewLayer layer;
            layer.color = image.get();
            layer.x = pick(dice, -20, 20);
            layer.y = pick(dice, -20, 20);
            ids_.push_back(stack_->addLayer(layer));
        }
        const std::int32_t some[] = {ids_[0], ids_[1]};
        if (pick(dice, 0, 1) == 0) stack_->makeGroupFrom(some, false);
    }
    void activate(std::int32_t id) {
        stack_->setActiveIndex(stack_->indexOfId(id, true), false, false, true);
    }
    std::vector<std::uint8_t> bytes(std::int32_t id) {
        return bytesOf(stack_->layerById(id)->colorImageRef());
    }
    std::vector<std::uint8_t> flat() {
        const Ref<ilSPMemoryImg> image = stack_->flatImage();
        return {image->data(), image->data() + image->byteSize()};
    }
    std::vector<std::uint8_t> plane() {
        stack_->present();
        ilSPMemoryImg& image = *stack_->imagePlane();
        return {image.data(), image.data() + image.byteSize()};
    }
    void expectShown() { EXPECT_EQ(difference(plane(), flat(), 4, canvas), ""); }

    Ref<LayerStack> stack_;
    std::vector<std::int32_t> ids_;
};

// Whatever it was dragged through, a fill comes to what one with its last tolerance gives, other
// layers stay, and the screen shows it.
TEST_F(Filling, FollowsItsTolerance) {
    const LayerColor color{0.9f, 0.1f, 0.3f, 0.6f};
    int differing = 0;
    for (std::uint32_t seed = 1; seed <= 30; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        begin(dice);
        const std::int32_t id = ids_[static_cast<std::size_t>(pick(dice, 0, 2))];
        // Also of a layer that isn't the active one, which stays so.
        const std::int32_t active = ids_[static_cast<std::size_t>(pick(dice, 0, 2))];
        activate(active);
        const bool soft = pick(dice, 0, 1) == 0;
        if (soft) stack_->selectImage(*noise(1, flatTile(10, 10, 120, 100), dice));
        const auto x = static_cast<float>(pick(dice, 0, width - 1));
        const auto y = static_cast<float>(pick(dice, 0, height - 1));
        const Ref<LayerStack> other(new LayerStack(*stack_));
        const auto before = bytes(id);
        plane();
        ASSERT_TRUE(stack_->floodFill(x, y, color, 0.0f, id));
        float tolerance = 0.0f;
        for (int n = 0; n < 4; ++n) {
            tolerance = static_cast<float>(pick(dice, 0, 255)) / 255.0f;
            ASSERT_TRUE(stack_->continueFill(tolerance));
        }
        ASSERT_TRUE(other->floodFill(x, y, color, tolerance, id));
        EXPECT_EQ(stack_->activeId(), active);
        EXPECT_EQ(difference(bytes(id), bytesOf(other->layerById(id)->colorImageRef()), 4), "");
        for (const std::int32_t neighbour : ids_)
            if (neighbour != id) {
                EXPECT_EQ(bytes(neighbour), bytesOf(other->layerById(neighbour)->colorImageRef()));
            }
        differing += before != bytes(id);
        // The screen has the selection's tint, too.
        if (!soft) {
            expectShown();
        }
        stack_->endFill();
        EXPECT_FALSE(stack_->continueFill(0.5f));
    }
    EXPECT_GT(differing, 20);
}

TEST_F(Filling, EndsWithItsLayer) {
    Dice dice(2);
    begin(dice);
    ASSERT_TRUE(stack_->floodFill(50, 50, {1, 0, 0, 1}, 0.5f, activeOne));
    const auto before = bytes(ids_[2]);
    activate(ids_[1]);
    EXPECT_FALSE(stack_->isFloodFilling());
    EXPECT_EQ(stack_->paintOps()->image(), stack_->layerById(ids_[1])->colorImageRef());
    EXPECT_FALSE(stack_->continueFill(0.1f));
    EXPECT_EQ(bytes(ids_[2]), before);
    EXPECT_FALSE(stack_->floodFill(-1, 50, {1, 0, 0, 1}, 0.5f, activeOne)) << "off the canvas";
}

TEST_F(Filling, GoesIntoTheStencilThatToolsPaintOn) {
    Dice dice(6);
    begin(dice);
    const auto color = bytes(ids_[2]);
    stack_->setPaintOnStencil(true);
    ASSERT_TRUE(stack_->floodFill(50, 50, {0, 0, 0, 0.5f}, 0.5f, activeOne));
    ASSERT_TRUE(stack_->continueFill(0.2f));
    EXPECT_EQ(bytes(ids_[2]), color);
    Layer& layer = *stack_->activeLayer();
    EXPECT_EQ(layer.stencilImage(), stack_->paintOps()->image());
    EXPECT_FALSE(boxOf(layer.stencilImage()).isEmpty());
}

// Whatever the tools paint on, and whether a selection restricts it.
TEST_F(Filling, EditsOfAllOfALayerAreOfItsColour) {
    Dice dice(6);
    for (const bool selects : {false, true}) {
        begin(dice);
        Layer& layer = *stack_->activeLayer();
        layer.setOffset(0.0f, 0.0f);
        if (selects) stack_->selectAll(flatTile(10, 10, 50, 50));
        stack_->setPaintOnStencil(true);
        const auto stencil = bytesOf(layer.stencilImage());
        const auto pixel = [&] { return layer.smartColor()->getPixel(20, 20); };
        stack_->fillLayer({0, 0, 1, 1}, false);
        EXPECT_EQ(pixel(), 0xFFFF0000u);
        const Ref<ilSmartImage> picture = blank(4);
        paintSolid(*picture, flatTile(0, 0, 90, 90), {9, 9, 9, 9});
        stack_->fillWithImage(*picture, false, true);
        EXPECT_EQ(pixel(), 0x09090909u);
        stack_->clearLayer(false);
        EXPECT_EQ(pixel(), 0u);
        EXPECT_EQ(bytesOf(layer.stencilImage()), stencil);
        EXPECT_EQ(stack_->paintOps()->image(), layer.stencilImage());
    }
}

TEST_F(Filling, SamplesTheLayer) {
    Dice dice(7);
    begin(dice);
    for (const std::int32_t id : ids_) {
        Layer& layer = *stack_->layerById(id);
        std::uint32_t pixel = 0;
        ASSERT_TRUE(stack_->sampleFill(40.7f, 30.2f, id, pixel));
        EXPECT_EQ(pixel,
                  layer.smartColor()->getPixel(40 - layer.offsetXInt(), 30 - layer.offsetYInt()));
    }
}

TEST_F(Filling, OfTheOnlyLayerClearsToTheBackground) {
    stack_ = Ref<LayerStack>(new LayerStack(0, 0, width, height));
    const std::int32_t id = stack_->addLayer({});
    stack_->setBackground({0.0f, 1.0f, 0.0f, 0.5f});
    stack_->clearLayer(false);
    EXPECT_EQ(stack_->layerById(id)->smartColor()->getPixel(10, 10), 0x80008000u);
    stack_->addLayer({});
    stack_->fillLayer({1, 1, 1, 1}, false);
    stack_->clearLayer(false);
    EXPECT_EQ(stack_->activeLayer()->smartColor()->getPixel(10, 10), 0u);
}

TEST_F(Filling, WithCheckers) {
    Dice dice(8);
    begin(dice);
    const auto others = bytes(ids_[0]);
    stack_->setPosition(ids_[2], 13.0f, -9.0f, false, true);
    stack_->checkerFill(7);
    Layer& layer = *stack_->activeLayer();
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            ASSERT_EQ(layer.smartColor()->getPixel(x - 13, y + 9),
                      (x / 7 + y / 7) % 2 == 0 ? 0xFF000000u : 0xFFFFFFFFu);
    EXPECT_EQ(bytes(ids_[0]), others);
    expectShown();
}

TEST_F(Filling, TurnsAboutTheCanvas) {
    Dice dice(9);
    for (int round = 0; round < 8; ++round) {
        begin(dice);
        const bool across = pick(dice, 0, 1) == 0;
        const bool upright = !across || pick(dice, 0, 1) == 0;
        Layer& layer = *stack_->layerById(ids_[1]);
        const ilTile all = flatTile(-300, -300, 800, 750);
        const auto at = [&](const std::vector<std::uint8_t>& picture, int x, int y) {
            return picture[static_cast<std::size_t>(4 * ((y + 300) * all.nx + x + 300))];
        };
        const auto placed = [&] {
            ilTile box = all;
            box.x -= layer.offsetXInt();
            box.y -= layer.offsetYInt();
            return bytesOf(layer.colorImageRef(), box);
        };
        const auto before = placed();
        stack_->flipCanvas(across, upright, ids_[1]);
        const auto after = placed();
        for (int y = -200; y < 340; ++y)
            for (int x = -200; x < 390; ++x)
                ASSERT_EQ(at(after, x, y),
                          at(before, across ? width - 1 - x : x, upright ? height - 1 - y : y));
    }
}

TEST_F(Filling, PicksTheTopmostThatShows) {
    Dice dice(10);
    begin(dice);
    for (int n = 0; n < 200; ++n) {
        const int x = pick(dice, -100, 250);
        const int y = pick(dice, -100, 250);
        stack_->layerById(ids_[static_cast<std::size_t>(n % 3)])->setVisible(pick(dice, 0, 3) != 0);
        std::int32_t wanted = noLayer;
        for (const std::int32_t id : ids_) {
            Layer& layer = *stack_->layerById(id);
            if (layer.isVisibleInTree() &&
                layer.smartColor()->getPixel(x - layer.offsetXInt(), y - layer.offsetYInt()) >> 24)
                wanted = stack_->indexOfId(id, true);
        }
        EXPECT_EQ(stack_->pickLayer(static_cast<float>(x), static_cast<float>(y), 0.5f, false),
                  wanted);
    }
}

TEST_F(Filling, TransformsSeveralLayersOrNone) {
    for (std::uint32_t seed = 1; seed <= 16; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        begin(dice);
        const std::int32_t group = stack_->groupOf(ids_[0]);
        const std::vector<std::int32_t> chosen{group == noLayer ? ids_[0] : group, ids_[2]};
        std::vector<std::vector<std::uint8_t>> before;
        std::vector<std::pair<int, int>> places;
        for (const std::int32_t id : ids_) {
            before.push_back(bytes(id));
            Layer& layer = *stack_->layerById(id);
            places.emplace_back(layer.offsetXInt(), layer.offsetYInt());
        }
        stack_->layerById(ids_[2])->setPivot(12.0f, 34.0f, true);
        const auto picture = flat();
        ASSERT_TRUE(stack_->beginTransform(chosen, 0, 0, true));
        EXPECT_EQ(stack_->paintOps(), nullptr);
        TransformRecord record;
        const bool moves = seed % 4 < 2;
        const bool keeps = seed % 2 == 0;
        if (moves) {
            record.x = 17.0f;
            record.y = -5.0f;
        } else if (!keeps) {
            record.scaleX = 1.5f;
            record.rotation = 30.0f;
        }
        stack_->updateTransform(record);
        stack_->endTransform(keeps);
        EXPECT_FALSE(stack_->inTransform());
        for (std::size_t n = 0; n < ids_.size(); ++n) {
            Layer& layer = *stack_->layerById(ids_[n]);
            const bool took = moves && keeps && (n != 1 || group != noLayer);
            EXPECT_EQ(difference(bytes(ids_[n]), before[n], 4), "") << n;
            EXPECT_EQ(layer.offsetXInt(), places[n].first + (took ? 17 : 0)) << n;
            EXPECT_EQ(layer.offsetYInt(), places[n].second - (took ? 5 : 0)) << n;
        }
        if (!moves || !keeps) {
            EXPECT_EQ(difference(flat(), picture, 4, canvas), "");
        }
        expectShown();
        float x = 0.0f;
        float y = 0.0f;
        stack_->layerById(ids_[2])->pivot(&x, &y);
        EXPECT_EQ(std::pair(x, y), std::pair(12.0f, 34.0f));
    }
}

// Any edit of the list closes it, with what was shown.
TEST_F(Filling, ATransformIsKeptByTheNextEdit) {
    Dice dice(12);
    begin(dice);
    const std::int32_t chosen[] = {activeOne};
    const int before = stack_->activeLayer()->offsetXInt();
    ASSERT_TRUE(stack_->beginTransform(chosen, 0, 0, true));
    TransformRecord record;
    record.x = 3.0f;
    stack_->updateTransform(record);
    stack_->addLayer({});
    EXPECT_FALSE(stack_->inTransform());
    EXPECT_EQ(stack_->layerById(ids_[2])->offsetXInt(), before + 3);
    EXPECT_FALSE(stack_->beginTransform({}, 0, 0, true));
    const std::int32_t selection[] = {stack_->selectionLayer()->id()};
    EXPECT_FALSE(stack_->beginTransform(selection, 0, 0, true));
}

}  // namespace
}  // namespace brushwork::test
