// Merging, flattening and grouping leave the picture as it was, as far as the modes allow it.
#include "document/stack/stack_merge.h"

#include <gtest/gtest.h>

#include "document/layer/layer_recipe.h"
#include "document/stack/layer_stack.h"
#include "support/test_seed.h"

namespace brushwork::test {
namespace {

constexpr std::int32_t width = 150, height = 140;

std::vector<std::uint8_t> flatBytes(LayerStack& stack) {
    const Ref<ilSPMemoryImg> image = stack.flatImage();
    return {image->data(), image->data() + image->byteSize()};
}

// How far two pictures are apart at most.
int distance(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    if (a.size() != b.size()) return 256;
    int most = 0;
    for (std::size_t n = 0; n < a.size(); ++n) most = std::max(most, std::abs(a[n] - b[n]));
    return most;
}

// Opaque blocks and nothing between: over each other they don't round. Else premultiplied noise.
Ref<ilSmartImage> anyPicture(Dice& dice, bool hard) {
    Ref<ilSmartImage> image = blank(4);
    for (int n = pick(dice, 1, 4); n > 0; --n) {
        const ilTile box = flatTile(pick(dice, -20, 110), pick(dice, -20, 100), pick(dice, 1, 60),
                                    pick(dice, 1, 60));
        if (!hard) paintNoise(*image, box, dice);
        if (hard) paintSolid(*image, box, {anyByte(dice), anyByte(dice), anyByte(dice), 255});
    }
    return image;
}

std::int32_t addPicture(LayerStack& stack, Dice& dice, bool hard, std::int32_t at = activeOne) {
    const Ref<ilSmartImage> image = anyPicture(dice, hard);
    stack::NewLayer layer;
    layer.color = image.get();
    layer.at = at;
    layer.x = pick(dice, -15, 15);
    layer.y = pick(dice, -15, 15);
    return stack.addLayer(layer);
}

std::int32_t addStencil(LayerStack& stack, Dice& dice) {
    const Ref<ilSmartImage> image = blank(1);
    paintSolid(*image, anyBox(dice, 80), {255});
    stack::NewLayer layer;
    layer.color = image.get();
    layer.role = LayerRole::Stencil;
    layer.makeActive = false;
    return stack.addLayer(layer);
}

// Layers, stencils on some of them, some hidden, some in pass-through groups of full opacity.
Ref<LayerStack> anyStack(Dice& dice, bool hard, bool stencils = true) {
    Ref<LayerStack> stack(new LayerStack(0, 0, width, height));
    std::vector<std::int32_t> ids;
    for (int n = pick(dice, 2, 6); n > 0; --n) {
        const std::int32_t id = addPicture(*stack, dice, hard);
        if (stencils && pick(dice, 0, 2) == 0) addStencil(*stack, dice);
        if (pick(dice, 0, 4) == 0) stack->setVisible(id, false);
        ids.push_back(id);
    }
    return stack;
}

std::vector<std::int32_t> topIds(LayerStack& stack) {
    std::vector<std::int32_t> ids;
    for (std::int32_t n = 1; n <= stack.layerCount(); ++n) ids.push_back(stack.idOfIndex(n, false));
    return ids;
}

TEST(Merging, KeepsThePictureOfOpaqueBlocks) {
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const Ref<LayerStack> stack = anyStack(dice, true);
        const auto before = flatBytes(*stack);
        switch (seed % 4) {
            case 0: ASSERT_TRUE(stack->flatten(false)); break;
            case 1:
                if (!stack->flatten(true)) continue;
                break;
            case 2:
                if (!stack->mergeVisible(false, noLayer, true)) continue;
                break;
            default: {
                // Neighbours, from the top, while both are shown.
                std::vector<std::int32_t> ids;
                for (const std::int32_t id : topIds(*stack))
                    if (stack->layerById(id)->role() == LayerRole::Paint) ids.push_back(id);
                for (std::size_t n = ids.size() - 1; n > 0; --n)
                    if (stack->layerById(ids[n])->visible() &&
                        stack->layerById(ids[n - 1])->visible()) {
                        ASSERT_TRUE(stack->mergeDown(ids[n], ids[n - 1]));
                    }
            }
        }
        EXPECT_EQ(distance(flatBytes(*stack), before), 0);
    }
}

// Over is associative but for the rounding of each step.
TEST(Merging, OfSoftPixelsRoundsOnly) {
    int most = 0;
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        Dice dice(seed);
        const Ref<LayerStack> stack = anyStack(dice, false, false);
        for (const std::int32_t id : topIds(*stack))
            if (pick(dice, 0, 1) == 0) stack->setOpacity(id, 0.25f * static_cast<float>(seed % 4));
        const auto before = flatBytes(*stack);
        const std::int32_t count = stack->layerCount();
        if (seed % 2 == 0 ? !stack->mergeVisible(false, noLayer, false) : !stack->flatten(false))
            continue;
        const int apart = distance(flatBytes(*stack), before);
        EXPECT_LE(apart, 2 * count) << "seed " << seed;
        most = std::max(most, apart);
    }
    RecordProperty("mostApart", most);
}

// Soft layers that the active one's group takes away from those that are flattened above it are
// laid in another order, and round otherwise.
TEST(Grouping, KeepsThePicture) {
    const std::uint32_t first = testSeed();
    for (std::uint32_t seed = first; seed < first + 60; ++seed) {
        SCOPED_TRACE(seed);
        const int rounding = seed % 2 == 0 ? 0 : 2;
        Dice dice(seed);
        const Ref<LayerStack> stack = anyStack(dice, seed % 2 == 0, false);
        const auto before = flatBytes(*stack);
        // Neighbours, so that nothing changes its depth.
        const auto ids = topIds(*stack);
        const auto from = static_cast<std::size_t>(pick(dice, 0, static_cast<int>(ids.size()) - 1));
        const auto count =
            static_cast<std::size_t>(pick(dice, 1, static_cast<int>(ids.size() - from)));
        const std::vector<std::int32_t> some(
            ids.begin() + static_cast<std::ptrdiff_t>(from),
            ids.begin() + static_cast<std::ptrdiff_t>(from + count));
        const std::int32_t group = stack->makeGroupFrom(some, pick(dice, 0, 1) == 0);
        ASSERT_NE(group, noLayer);
        EXPECT_EQ(stack->layerName(group), znString::IString(u"New Group"));
        EXPECT_LE(distance(flatBytes(*stack), before), rounding) << "grouped";
        if (seed % 2 == 0) {
            // With a cache of its own.
            stack->setBlendMode(group, 0);
            EXPECT_EQ(distance(flatBytes(*stack), before), 0) << "isolated";
            stack->setBlendMode(group, passThroughMode);
        }
        const Ref<LayerStack> copy(new LayerStack(*stack));
        const std::int32_t one[] = {group};
        ASSERT_TRUE(stack->ungroup(one, pick(dice, 0, 1) == 0));
        EXPECT_LE(distance(flatBytes(*stack), before), rounding) << "ungrouped";
        if (seed % 2 != 0) continue;
        ASSERT_TRUE(copy->flattenGroup(group, false, noLayer, false));
        EXPECT_EQ(distance(flatBytes(*copy), before), 0) << "flattened";
    }
}

TEST(Grouping, FlattenedTakesTheGroupsAttributes) {
    Dice dice(3);
    const Ref<LayerStack> stack(new LayerStack(0, 0, width, height));
    const std::int32_t ids[] = {addPicture(*stack, dice, false), addPicture(*stack, dice, false)};
    const std::int32_t group = stack->makeGroupFrom(ids, false);
    constexpr std::int32_t multiply = 1;
    stack->setBlendMode(group, multiply);
    stack->setOpacity(group, 0.5f);
    stack->setName(group, znString::IString(u"both"));
    addPicture(*stack, dice, false, 0);
    const auto before = flatBytes(*stack);
    ASSERT_TRUE(stack->flattenGroup(group, true, noLayer, false));
    ASSERT_EQ(stack->layerCountTotal(true), 4);
    ASSERT_TRUE(stack->flattenGroup(group, false, noLayer, false));
    EXPECT_EQ(stack->layerCountTotal(true), 2);
    Layer& layer = *stack->activeLayer();
    EXPECT_EQ(layer.blendMode(), multiply);
    EXPECT_EQ(layer.opacity(), 0.5f);
    EXPECT_EQ(layer.name(), znString::IString(u"both"));
    EXPECT_EQ(distance(flatBytes(*stack), before), 0);
}

TEST(Merging, RefusesWhatDoesNotFit) {
    Dice dice(1);
    const Ref<LayerStack> stack(new LayerStack(0, 0, width, height));
    const std::int32_t lower = addPicture(*stack, dice, true);
    EXPECT_FALSE(stack->mergeVisible(false, noLayer, false)) << "one plain layer";
    EXPECT_EQ(stack->activeId(), lower);
    const std::int32_t upper = addPicture(*stack, dice, true);
    const std::int32_t stencil = addStencil(*stack, dice);
    stack::NewLayer shapes;
    shapes.shape = true;
    const std::int32_t shape = stack->addLayer(shapes);
    const std::int32_t one[] = {upper};
    const std::int32_t group = stack->makeGroupFrom(one, false);
    const std::int32_t selection = stack->selectionLayer()->id();
    for (const auto& [a, b] :
         std::vector<std::pair<std::int32_t, std::int32_t>>{{upper, lower},
                                                            {group, lower},
                                                            {lower, group},
                                                            {stencil, lower},
                                                            {shape, 4711},
                                                            {lower, shape},
                                                            {lower, lower},
                                                            {selection, lower},
                                                            {lower, selection}})
        EXPECT_FALSE(stack->mergeDown(a, b)) << a << " into " << b;
    EXPECT_EQ(stack->layerCountTotal(true), 5);
    EXPECT_TRUE(stack->mergeDown(shape, lower));
    EXPECT_FALSE(stack->flattenGroup(lower, false, noLayer, false));
}

// The lowest layer is shown at the end, but what it held while hidden isn't.
TEST(Flattening, LeavesHiddenPixelsOut) {
    Dice dice(5);
    const Ref<LayerStack> stack(new LayerStack(0, 0, width, height));
    const std::int32_t lowest = addPicture(*stack, dice, true);
    stack->setVisible(lowest, false);
    addPicture(*stack, dice, true);
    const auto before = flatBytes(*stack);
    ASSERT_TRUE(stack->flatten(false));
    EXPECT_EQ(stack->layerCount(), 1);
    EXPECT_EQ(stack->activeId(), lowest);
    EXPECT_TRUE(stack->activeLayer()->visible());
    EXPECT_EQ(distance(flatBytes(*stack), before), 0);
}

TEST(Flattening, LeavesFlaggedLayersAbove) {
    Dice dice(9);
    const Ref<LayerStack> stack(new LayerStack(0, 0, width, height));
    const std::int32_t lowest = addPicture(*stack, dice, true);
    const std::int32_t kept = addPicture(*stack, dice, true);
    stack->activeLayer()->setFlags(Layer::plainFlags | Layer::KeptByFlatten);
    addPicture(*stack, dice, true);
    ASSERT_TRUE(stack->flatten(false));
    EXPECT_EQ(topIds(*stack), (std::vector<std::int32_t>{lowest, kept}));
    EXPECT_EQ(stack->activeId(), kept);
}

// Hidden members of a group stay, above what it was, with what is attached to them.
TEST(Merging, LiftsHiddenMembers) {
    Dice dice(11);
    const Ref<LayerStack> stack(new LayerStack(0, 0, width, height));
    std::vector<std::int32_t> ids;
    for (int n = 0; n < 3; ++n) ids.push_back(addPicture(*stack, dice, true));
    stack->setActiveIndex(stack->indexOfId(ids[1], true), false, false, true);
    const std::int32_t stencil = addStencil(*stack, dice);
    const std::int32_t members[] = {ids[0], ids[1], stencil, ids[2]};
    const std::int32_t group = stack->makeGroupFrom(members, true);
    stack->setVisible(ids[1], false);
    const std::int32_t above = addStencil(*stack, dice);
    const auto before = flatBytes(*stack);
    EXPECT_EQ(stack->groupOf(above), noLayer);
    ASSERT_TRUE(stack->mergeVisible(false, noLayer, false));
    ASSERT_EQ(stack->layerCountTotal(true), 3);
    EXPECT_EQ(topIds(*stack), (std::vector<std::int32_t>{stack->activeId(), ids[1], stencil}));
    EXPECT_EQ(stack->layerById(group), nullptr);
    EXPECT_EQ(distance(flatBytes(*stack), before), 0);
}

}  // namespace
}  // namespace brushwork::test
