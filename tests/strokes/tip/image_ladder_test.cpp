#include "strokes/tip/image_ladder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "image/work/il_const_img.h"
#include "strokes/tip/image_paint_obj.h"
#include "support/test_seed.h"

namespace brushwork {
namespace {

using Size = std::pair<int, int>;

Ref<ilSPMemoryImg> picture(int width, int height, int channels = 1) {
    const auto image = makeRef<ilSPMemoryImg>(width, height, channels);
    for (std::size_t n = 0; n < image->byteSize(); ++n)
        image->data()[n] = static_cast<std::uint8_t>(n * 37 + 11);
    return image;
}

std::vector<Size> sizesOf(const ImageLadder& levels) {
    std::vector<Size> sizes;
    for (const auto& level : levels) sizes.emplace_back(level->sizeX(), level->sizeY());
    return sizes;
}

// The sizes alone, by the same steps.
std::vector<Size> expectedSizes(Size size) {
    const auto by = [](Size s, double x, double y) {
        return Size{static_cast<int>(std::floor(s.first * x + 0.5)),
                    static_cast<int>(std::floor(s.second * y + 0.5))};
    };
    std::vector<Size> sizes;
    int rounds = 0;
    for (int side = std::min(size.first, size.second); side > 3; side /= 2) ++rounds;
    for (rounds = std::max(rounds, 1); rounds > 0; --rounds) {
        for (const Size& base : {size, by(size, 0.7071, 0.7071)}) {
            sizes.push_back(base);
            for (int n = 1; n < rounds; ++n) {
                sizes.push_back(by(base, 1, 0.7071));
                sizes.push_back(by(base, 1, 0.5));
            }
        }
        size = by(size, 0.5, 0.5);
    }
    return sizes;
}

TEST(ImageLadder, LevelsOfOddAndExtremeSizes) {
    for (const Size& size : {Size{256, 256},
                             {255, 131},
                             {7, 7},
                             {3, 200},
                             {1, 2},
                             {4, 4},
                             {1024, 8},
                             {5, 1030},
                             {8, 9}}) {
        const auto levels = imageLadderOf(picture(size.first, size.second));
        EXPECT_EQ(sizesOf(levels), expectedSizes(size)) << size.first << " x " << size.second;
    }
    for (const Size& size : {Size{1025, 1025}, {2000, 1100}, {1, 1}})
        EXPECT_EQ(imageLadderOf(picture(size.first, size.second)).size(), 1u);
    EXPECT_TRUE(imageLadderOf({}).empty());
    // Seven rounds, the first with six pairs behind each of two images.
    const auto levels = imageLadderOf(picture(256, 256));
    EXPECT_EQ(levels.size(), 2u * (7 + 2 * (6 + 5 + 4 + 3 + 2 + 1)));
    EXPECT_EQ(levels[1], levels[3]);
    EXPECT_EQ(levels[2], levels[12]);
}

TEST(ImageLadder, ReducedCopyIsTheBilinearScaling) {
    for (const int channels : {1, 4}) {
        const auto image = picture(31, 17, channels);
        const auto reduced = reducedCopy(*image, 0.7071f, 0.5f);
        ASSERT_TRUE(reduced);
        EXPECT_EQ(reduced->sizeX(), 22);
        EXPECT_EQ(reduced->sizeY(), 9);
        EXPECT_EQ(reduced->channels(), channels);
        const auto again = makeRef<ilSPMemoryImg>(22, 9, channels);
        image->setScale(0.7071f, 0.5f);
        image->setSampleModes(SampleMode::Bilinear, SampleMode::Bilinear);
        ASSERT_EQ(image->scaleAllInto(again->scaledTarget()), ImageOk);
        EXPECT_TRUE(std::equal(again->data(), again->data() + again->byteSize(), reduced->data()));
    }
    EXPECT_FALSE(reducedCopy(*picture(5, 5, 3), 0.5f, 0.5f));
}

// A second rendering of the search, by signs and a state instead of branches that leave.
std::size_t searched(const std::vector<Size>& levels, int width, int height) {
    const int count = static_cast<int>(levels.size());
    if (width == 0 && height == 0) return 0;
    int low = 0, high = count - 1, middle = 0;
    bool done = false;
    while (!done) {
        middle = (low + high) / 2;
        const auto [w, h] = levels[static_cast<std::size_t>(middle)];
        const int sx = (width > w) - (width < w), sy = (height > h) - (height < h);
        if (sx == sy) {
            if (sx < 0) middle = low = middle + 1;
            if (sx == 0) low = middle + 1;
            if (sx > 0) middle = high = middle - 1;
            done = low > high;
        } else {
            int found = 0;
            for (int n = 0; n <= high; ++n)
                if (levels[static_cast<std::size_t>(n)].first >= width &&
                    levels[static_cast<std::size_t>(n)].second >= height)
                    found = n;
            middle = found;
            done = true;
        }
    }
    return static_cast<std::size_t>(std::max(0, std::min(middle, count - 1)));
}

TEST(ImageLadder, SearchFindsTheLevelOfTheSecondRendering) {
    const unsigned seed = brushwork::test::testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](int n) { return static_cast<int>(random() % unsigned(n)); };
    for (int round = 0; round < 40; ++round) {
        // Ladders as they are made, and arbitrary ones.
        ImageLadder levels;
        if (round % 2 == 0) {
            levels = imageLadderOf(picture(1 + below(200), 1 + below(200)));
        } else {
            for (int n = 1 + below(12); n > 0; --n)
                levels.push_back(picture(1 + below(30), 1 + below(30)));
        }
        const auto sizes = sizesOf(levels);
        for (int ask = 0; ask < 300; ++ask) {
            const Size near = sizes[random() % sizes.size()];
            const int width = ask % 2 ? below(220) : std::max(0, near.first + below(3) - 1);
            const int height = ask % 2 ? below(220) : std::max(0, near.second + below(3) - 1);
            ASSERT_EQ(ladderLevel(levels, width, height), levels[searched(sizes, width, height)])
                << width << " x " << height << " of " << levels.size() << " levels";
        }
    }
    EXPECT_FALSE(ladderLevel({}, 0, 0));
}

TEST(ImagePaintObj, TellsOfReplacementsAlone) {
    class Counter final : public Observer {
      public:
        void observableChanged(Observable&) override { ++count; }
        int count = 0;
    } counter;
    const Ref<ilImage> image = picture(40, 30);
    const auto object = makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
    object->addObserver(&counter);
    object->setImageLadder(image);
    EXPECT_EQ(counter.count, 0);
    object->setSingleImage(image);
    EXPECT_EQ(object->levels().size(), 1u);
    EXPECT_EQ(counter.count, 1);
    object->setImageLadder(image);
    EXPECT_EQ(counter.count, 1) << "its first level is that image already";
    object->setImageLadder({});
    EXPECT_FALSE(object->imageAtSize(0, 0));
    object->setImageLadder({});
    EXPECT_EQ(counter.count, 2);
    EXPECT_EQ(object->revision(), 2u);
    object->removeObserver(&counter);
}

}  // namespace
}  // namespace brushwork
