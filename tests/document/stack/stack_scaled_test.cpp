// Frames of a transform of several layers beside the picture that the document then has.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "document/layer/layer_recipe.h"
#include "document/layer/shape_layer.h"
#include "document/stack/naive_compositor.h"
#include "document/stack/view_host.h"
#include "support/test_seed.h"

namespace brushwork::test {
namespace {

constexpr std::int32_t width = 260, height = 210;

// Boxes of one colour, so that a pixel that is far from all edges says which layers lie there and
// how they are blended, whatever sampled it.
class ScaledFrames : public testing::Test {
  protected:
    ScaledFrames() : host_(width, height) {
        stack_ = Ref<LayerStack>(new LayerStack(0, 0, 0, 0));
        stack_->setBackground({0.9f, 0.8f, 0.4f, 1.0f});
    }

    void addBoxes(Dice& dice, LayerGroup* group) {
        const Ref<ilSmartImage> image = blank(4, pick(dice, 0, 7) == 0 ? 60 : 0);
        for (int n = pick(dice, 1, 3); n > 0; --n) {
            const auto alpha = static_cast<std::uint8_t>(pick(dice, 60, 255));
            const auto part = [&] { return static_cast<std::uint8_t>(pick(dice, 0, alpha)); };
            paintSolid(*image,
                       flatTile(pick(dice, -30, 150), pick(dice, -30, 120), pick(dice, 20, 140),
                                pick(dice, 20, 120)),
                       {part(), part(), part(), alpha});
        }
        stack::NewLayer layer;
        layer.color = image.get();
        layer.group = group;
        layer.at = group ? group->childCount(false) : stack_->layerCountTotal(true);
        layer.x = pick(dice, -20, 20);
        std::int32_t id = noLayer;
        if (pick(dice, 0, 5) == 0) {
            // Stays where the host has it.
            const Ref<ShapeLayer> shapes(
                new ShapeLayer(ShapeLayerKind::Paint, image.get(), layer.x, 0));
            stack_->insertLayer(*shapes, false, layer.at, group, false);
            id = shapes->id();
        } else {
            id = stack_->addLayer(layer);
            if (pick(dice, 0, 3) == 0)
                paintSolid(*stack_->layerById(id)->stencilImage(), anyBox(dice, 150), {100});
        }
        static constexpr std::int32_t modes[] = {0, 0, 0, 1, 3, 5};
        stack_->setBlendMode(id, modes[dice() % std::size(modes)]);
        stack_->setOpacity(id, pick(dice, 0, 1) == 0 ? 1.0f : 0.6f);
        plain_.push_back(id);
        if (pick(dice, 0, 3) == 0) addStencil(dice, group);
    }
    // Of what lies below it, with which it moves or doesn't.
    void addStencil(Dice& dice, LayerGroup* group) {
        const Ref<ilSmartImage> image = blank(1, pick(dice, 0, 5) == 0 ? 80 : 0);
        paintSolid(*image, anyBox(dice, 150), {200});
        stack::NewLayer layer;
        layer.color = image.get();
        layer.role = LayerRole::Stencil;
        layer.makeActive = false;
        layer.group = group;
        layer.at = group ? group->childCount(false) : stack_->layerCountTotal(true);
        layer.x = pick(dice, -20, 20);
        // Shapes take none.
        if (const std::int32_t id = stack_->addLayer(layer); id != noLayer) plain_.push_back(id);
    }
    void build(Dice& dice) {
        for (int n = pick(dice, 2, 5); n > 0; --n) {
            if (pick(dice, 0, 2) > 0) {
                addBoxes(dice, nullptr);
                continue;
            }
            const std::int32_t id =
                stack_->addGroup(znString::IString(u"G"), stack_->layerCountTotal(true), false);
            if (pick(dice, 0, 1) == 0) stack_->setBlendMode(id, pick(dice, 0, 1) == 0 ? 0 : 1);
            if (pick(dice, 0, 1) == 0) stack_->setOpacity(id, 0.7f);
            for (int m = pick(dice, 1, 3); m > 0; --m) addBoxes(dice, stack_->groupById(id));
            groups_.push_back(id);
        }
        stack_->setActiveIndex(pick(dice, 1, stack_->layerCountTotal(true)), true, false, true);
    }
    std::vector<std::int32_t> some(Dice& dice) {
        std::vector<std::int32_t> ids;
        for (const std::int32_t id : plain_)
            if (pick(dice, 0, 2) == 0) ids.push_back(id);
        for (const std::int32_t id : groups_)
            if (pick(dice, 0, 2) == 0) ids.push_back(id);
        if (ids.empty()) ids.push_back(plain_.front());
        return ids;
    }
    // One of the frame's pixels.
    static std::int64_t placeOf(std::int32_t place, float scale, float view) {
        return static_cast<std::int64_t>(
            std::floor((static_cast<float>(place) + 0.5f + view) / scale));
    }
    // Within the canvas, and no edge near.
    static bool isPlain(const Picture& picture, std::int64_t x, std::int64_t y) {
        constexpr std::int64_t reach = 9;
        if (x < reach || y < reach || x >= width - reach || y >= height - reach) return false;
        const auto pixel = [&](std::int64_t px, std::int64_t py) {
            return picture.begin() + static_cast<std::ptrdiff_t>(4 * (py * width + px));
        };
        for (std::int64_t py = y - reach; py <= y + reach; ++py)
            for (std::int64_t px = x - reach; px <= x + reach; ++px)
                if (!std::equal(pixel(px, py), pixel(px, py) + 4, pixel(x, y))) return false;
        return true;
    }
    // Pixels that could be compared. What is flattened or resampled first rounds by one or so,
    // which modes multiply.
    std::size_t compare(const Picture& shown, std::int32_t shownWidth, const Picture& wanted) {
        std::size_t compared = 0;
        const auto rows = static_cast<std::int32_t>(shown.size() / 4) / shownWidth;
        for (std::int32_t y = 0; y < rows; ++y)
            for (std::int32_t x = 0; x < shownWidth; ++x) {
                const std::int64_t px = placeOf(x, host_.view[2], host_.view[0]);
                const std::int64_t py = placeOf(y, host_.view[2], host_.view[1]);
                if (!isPlain(wanted, px, py)) continue;
                ++compared;
                for (std::size_t c = 0; c < 4; ++c) {
                    const int is = shown[4 * static_cast<std::size_t>(y * shownWidth + x) + c];
                    const int was = wanted[4 * static_cast<std::size_t>(py * width + px) + c];
                    if (std::abs(is - was) <= 5) continue;
                    ADD_FAILURE() << "at " << x << ", " << y << " (" << px << ", " << py
                                  << ") channel " << c << ": " << is << ", wanted " << was;
                    return compared;
                }
            }
        return compared;
    }

    ViewHost host_;
    Ref<LayerStack> stack_;
    std::vector<std::int32_t> plain_, groups_;
};

TransformRecord anyRecord(Dice& dice) {
    TransformRecord record;
    record.x = static_cast<float>(pick(dice, -40, 40));
    record.y = static_cast<float>(pick(dice, -40, 40));
    record.pivotX = 100.0f;
    record.pivotY = 90.0f;
    switch (pick(dice, 0, 3)) {
        case 0:
            record.scaleX = 1.5f;
            record.scaleY = 0.75f;
            break;
        case 1: record.rotation = static_cast<float>(pick(dice, -180, 180)); break;
        case 2: record.corners = {-10, 5, 20, 0, 15, 25, 0, -12}; break;
        default: break;
    }
    return record;
}

TEST_F(ScaledFrames, ShowWhatTheTransformLeaves) {
    std::size_t compared = 0;
    const std::uint32_t seed = testSeed();
    for (std::uint32_t n = 0; n < 40; ++n) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", document " + std::to_string(n));
        Dice dice(seed + n);
        stack_->clearLayers();
        plain_.clear();
        groups_.clear();
        build(dice);
        static constexpr float scales[] = {1.0f, 0.5f, 2.0f, 0.8f, 1.3f};
        host_.view[0] = static_cast<float>(pick(dice, -20, 40));
        host_.view[1] = static_cast<float>(pick(dice, -20, 40));
        host_.view[2] = scales[n % std::size(scales)];
        DisplayTarget& display = stack_->parts().display;
        display.offscreen = true;
        display.width = 240;
        display.height = 190;
        stack_->present();
        ASSERT_TRUE(stack_->beginTransform(some(dice), 0, 0, false));
        stack_->updateTransform(anyRecord(dice));
        static_cast<void>(stack_->renderDisplay(true));
        stack_->updateTransform(anyRecord(dice));
        ilImage* const shown = stack_->renderDisplay(true);
        ASSERT_NE(shown, nullptr);
        const Picture frame = bytesOf(shown, flatTile(0, 0, 240, 190));
        ASSERT_EQ(bytesOf(stack_->renderDisplay(true), flatTile(0, 0, 240, 190)), frame);
        stack_->endTransform(true);
        compared += compare(frame, 240, naivePlainPicture(*stack_));
        if (HasFailure()) return;
    }
    EXPECT_GT(compared, 100000u);
}

}  // namespace
}  // namespace brushwork::test
