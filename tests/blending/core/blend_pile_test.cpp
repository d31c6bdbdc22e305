#include "blending/core/blend_pile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "blending/core/blend_layout.h"
#include "blending/modes/blender_registry.h"
#include "brushwork/blend_mode_table.h"
#include "foundation/tasks/task_pool.h"
#include "support/test_seed.h"

namespace brushwork {
namespace {

using npc::BlendPile;
using Dice = std::mt19937;

std::int32_t pick(Dice& dice, std::int32_t from, std::int32_t to) {
    return std::uniform_int_distribution<std::int32_t>(from, to)(dice);
}

constexpr ilTile canvas = flatTile(-150, -140, 420, 400);

Ref<ilSmartImage> speckled(Dice& dice) {
    Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    for (int n = pick(dice, 1, 3); n > 0; --n) {
        const ilTile box = flatTile(pick(dice, -150, 150), pick(dice, -150, 150),
                                    pick(dice, 1, 200), pick(dice, 1, 200));
        std::vector<std::uint8_t> bytes(4 * static_cast<std::size_t>(box.nx * box.ny));
        for (std::size_t at = 0; at < bytes.size(); at += 4) {
            const auto alpha = static_cast<std::uint32_t>(pick(dice, 0, 3) * 85);
            for (std::size_t c = 0; c < 3; ++c)
                bytes[at + c] = static_cast<std::uint8_t>(dice() % (alpha + 1));
            bytes[at + 3] = static_cast<std::uint8_t>(alpha);
        }
        image->writeRegion(box, bytes.data(), box);
    }
    return image;
}

// A box in one cell of the pile.
ilTile boxInCell(Dice& dice) {
    const std::int32_t x = pick(dice, -2, 1) * BlendPile::cellSide;
    const std::int32_t y = pick(dice, -2, 1) * BlendPile::cellSide;
    if (pick(dice, 0, 2) == 0) return flatTile(x, y, BlendPile::cellSide, BlendPile::cellSide);
    const std::int32_t left = pick(dice, 0, 127), bottom = pick(dice, 0, 127);
    return flatTile(x + left, y + bottom, pick(dice, 1, 128 - left), pick(dice, 1, 128 - bottom));
}

std::vector<std::uint8_t> pixelsOf(ilImage& image, const ilTile& box) {
    std::vector<std::uint8_t> bytes(4 * static_cast<std::size_t>(box.nx * box.ny));
    image.readRegion(box, bytes.data(), box);
    return bytes;
}

struct SceneLayer {
    std::shared_ptr<npc::GenericBlender> blender;
    Ref<ilSmartImage> image;
    BlendPile::Source source;
};

// The target and what is blended into it, made twice alike: sources may share pages with it.
struct Scene {
    explicit Scene(std::uint32_t seed) : dice(seed) {
        const Ref<ilSmartImage> first = speckled(dice);
        if (pick(dice, 0, 2) == 0) {
            const auto memory = makeRef<ilSPMemoryImg>(300, 280, 4);
            memory->fillRegion(memory->box(), ilPixel(TypeUChar, 4));
            target = memory;
        } else {
            target = first->clone();
        }
        targetX = pick(dice, 0, 1) * pick(dice, -90, 90);
        targetY = pick(dice, 0, 1) * pick(dice, -90, 90);
        constexpr BlendModeId modes[] = {BlendModeId::Normal, BlendModeId::Multiply,
                                         BlendModeId::Hue, BlendModeId::Replace};
        for (int n = pick(dice, 1, 6); n > 0; --n) {
            const BlendModeId mode = modes[pick(dice, 0, 3)];
            SceneLayer& layer = layers.emplace_back();
            layer.blender = npc::createBlender(mode);
            layer.blender->setOpacity(static_cast<float>(pick(dice, 1, 4)) / 4.0F);
            layer.image = n == 1 ? first : speckled(dice);
            if (pick(dice, 0, 3) == 0) {
                const auto pixel = static_cast<std::uint32_t>(dice() | 0xFF000000);
                layer.image->setFill(ilPixel(TypeUChar, 4, &pixel));
            }
            const bool moves = pick(dice, 0, 1) == 1;
            layer.source = {layer.image.get(), moves ? pick(dice, -200, 200) : 0,
                            moves ? pick(dice, -200, 200) : 0,
                            mode != BlendModeId::Replace && pick(dice, 0, 3) > 0};
        }
    }

    Dice dice;
    Ref<ilImage> target;
    std::int32_t targetX, targetY;
    std::vector<SceneLayer> layers;
};

TEST(BlendPile, BlendsAsRunsOneAfterAnother) {
    const std::uint32_t first = test::testSeed();
    TaskPool::instance().stop();
    for (std::uint32_t seed = first; seed < first + 150; ++seed) {
        if (seed % 3 == 0) TaskPool::instance().stop();
        if (seed % 3 == 1) TaskPool::instance().start(3);
        Scene apart(seed), piled(seed);
        BlendPile pile(*piled.target, piled.targetX, piled.targetY);
        for (std::size_t n = 0; n < apart.layers.size(); ++n) {
            const SceneLayer& alone = apart.layers[n];
            alone.blender->setDestination(apart.target.get(), apart.targetX, apart.targetY);
            alone.blender->setSource(alone.source.image, alone.source.x, alone.source.y, false);
            for (int boxes = pick(apart.dice, 1, 12); boxes > 0; --boxes) {
                const ilTile box = boxInCell(apart.dice);
                pile.add(*piled.layers[n].blender, piled.layers[n].source, box);
                alone.blender->run(box);
            }
            if (pick(apart.dice, 0, 5) == 0) pile.run();
        }
        pile.run();
        ASSERT_TRUE(pixelsOf(*apart.target, canvas) == pixelsOf(*piled.target, canvas))
            << "seed " << seed;
    }
    TaskPool::instance().stop();
    TaskPool::instance().start(TaskPool::defaultSize());
}

TEST(BlendPile, KeepsNoMorePagesThanARunDoes) {
    const auto content = [](std::int32_t x, std::int32_t y, std::int32_t c) {
        return test::contentOf(5, x, y, c);
    };
    const auto target = makeRef<test::PageImage>(4, content);
    const auto blender = npc::createBlender(BlendModeId::Normal);
    std::vector<Ref<ilSmartImage>> sources;
    const auto keptPages = [&] {
        std::int32_t count = 0;
        for (const auto& source : sources)
            for (std::int32_t x = 0; x < 1024; x += 128) {
                const SmartPage& page = **source->pages().findSlot(x, 0);
                count += page.pins + page.cacheLocks;
            }
        return count;
    };
    BlendPile pile(*target, 0, 0);
    std::int32_t most = 0;
    for (int n = 0; n < 40; ++n) {
        sources.emplace_back(new ilSmartImage(ilPixel(TypeUChar, 4)));
        for (std::int32_t x = 0; x < 1024; x += 128) sources.back()->setPixel(x, 0, 0xFF0000FF);
        for (std::int32_t x = 0; x < 1024; x += 128)
            EXPECT_TRUE(
                pile.add(*blender, {sources.back().get(), 0, 0, true}, flatTile(x, 0, 9, 9)));
        most = std::max(most, keptPages());
    }
    pile.run();
    EXPECT_GT(most, 200);
    EXPECT_LE(most, 256);
    EXPECT_EQ(keptPages(), 0);
    EXPECT_EQ(target->openLocks, 0);
    EXPECT_LE(target->mostOpenLocks, 16);
}

}  // namespace
}  // namespace brushwork
