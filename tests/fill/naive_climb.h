// What the climbing fill has to give, written down on plain arrays: the walk, the judgement and
// what is made of a mask of noise.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "fill/doodle_flood_fill_operation.h"
#include "fill/naive_flood.h"
#include "foundation/services/log.h"
#include "image/filter/il_convolution_img.h"

namespace brushwork::test {

class NaiveClimb {
  public:
    NaiveClimb(const Picture& picture, std::int32_t x, std::int32_t y, int tolerance)
        : mask(picture.box, 1, 0),
          picture_(picture),
          target_(picture.at(x, y)),
          tolerance_(tolerance) {
        std::vector<std::pair<std::int32_t, std::int32_t>> seeds{{x, y}};
        while (!seeds.empty()) {
            const auto [seedX, row] = seeds.back();
            seeds.pop_back();
            markAt(seedX, row);
            std::int32_t left = seedX, right = seedX;
            while (goesOn(right, right + 1, row)) markAt(++right, row);
            while (goesOn(left, left - 1, row)) markAt(--left, row);
            for (const std::int32_t next : {row - 1, row + 1}) {
                if (!picture.holds(left, next)) continue;
                std::int32_t end = left;
                while (end <= right && mask.at(end, next) == 0) ++end;
                for (std::int32_t i = left; i < end; ++i)
                    if (step(i, next, i, row) != 0 &&
                        (i + 1 == end || step(i + 1, next, i + 1, row) != step(i, next, i, row)))
                        seeds.emplace_back(i, next);
            }
        }
    }

    [[nodiscard]] int distance(std::int32_t x, std::int32_t y) const {
        return naiveDistance(picture_.at(x, y), target_, picture_.channels);
    }

    Picture mask;

  private:
    // 0 no way, 1 flat, 2 up.
    [[nodiscard]] int step(std::int32_t x, std::int32_t y, std::int32_t fromX,
                           std::int32_t fromY) const {
        const auto height = [&](std::int32_t px, std::int32_t py) {
            const int value = distance(px, py);
            return picture_.channels == 4 && value <= tolerance_ ? 0 : value;
        };
        const int next = height(x, y), before = height(fromX, fromY);
        return next > before ? 2 : next == 0 && before == 0 ? 1 : 0;
    }
    [[nodiscard]] bool goesOn(std::int32_t x, std::int32_t next, std::int32_t y) const {
        return picture_.holds(next, y) && mask.at(next, y) == 0 && step(next, y, x, y) != 0;
    }
    void markAt(std::int32_t x, std::int32_t y) {
        const int value = distance(x, y);
        const int share = static_cast<int>((1.0 - value * 0.003921569) * 255.0);
        mask.set(x, y, value <= tolerance_ ? 255U : static_cast<std::uint32_t>(std::max(share, 1)));
    }

    const Picture& picture_;
    std::uint32_t target_;
    int tolerance_;
};

// Of the marks: the least tile around them.
inline ilTile markedTile(const Picture& mask) {
    std::int32_t left = mask.box.endX(), right = mask.box.x, top = mask.box.endY(),
                 bottom = mask.box.y;
    for (std::int32_t y = mask.box.y; y < mask.box.endY(); ++y)
        for (std::int32_t x = mask.box.x; x < mask.box.endX(); ++x) {
            if (mask.at(x, y) == 0) continue;
            left = std::min(left, x);
            right = std::max(right, x + 1);
            top = std::min(top, y);
            bottom = std::max(bottom, y + 1);
        }
    return flatTile(left, top, right - left, bottom - top);
}

inline int naiveSpikes(const Picture& mask, const ilTile& box) {
    int count = 0;
    const auto at = [&](std::int32_t x, std::int32_t y) { return static_cast<int>(mask.at(x, y)); };
    const auto apart = [](int a, int b) { return std::abs(a - b) > 128; };
    for (std::int32_t y = box.y; y < box.endY(); ++y)
        for (std::int32_t x = box.x; x < box.endX(); ++x) {
            const int value = at(x, y);
            const bool inRow = x > box.x && x < box.endX() - 1;
            const bool inColumn = y > box.y && y < box.endY() - 1;
            count += inRow && apart(value, at(x - 1, y)) && apart(value, at(x + 1, y)) ? 1 : 0;
            count += inColumn && apart(value, at(x, y - 1)) && apart(value, at(x, y + 1)) ? 1 : 0;
        }
    return count;
}

struct LogCatcher {
    LogCatcher() {
        setLogSink([this](std::string_view text) { lines += text; });
    }
    ~LogCatcher() { setLogSink({}); }
    std::string lines;
};

// Runs the fill and holds its mask, and what it logs, to the model. Answers whether the mask was
// taken for noise.
inline bool climbsAsModel(const Picture& picture, std::int32_t x, std::int32_t y, int tolerance,
                          bool force) {
    NaiveClimb model(picture, x, y, tolerance);
    const ilTile marked = markedTile(model.mask);
    const bool reverts = force || naiveSpikes(model.mask, marked) > 40;
    // What is too far off is taken back, and the mask smoothed over its box.
    if (reverts) {
        const Ref<ilConvolutionImg> smooth(new ilConvolutionImg(marked.nx, marked.ny, 1));
        const auto value = [&](std::int32_t i, std::int32_t j) -> std::uint8_t& {
            return smooth->data()[(j - marked.y) * marked.nx + i - marked.x];
        };
        const auto over = [&](const auto& work) {
            for (std::int32_t j = marked.y; j < marked.endY(); ++j)
                for (std::int32_t i = marked.x; i < marked.endX(); ++i) work(i, j);
        };
        over([&](std::int32_t i, std::int32_t j) {
            const bool kept = model.distance(i, j) <= tolerance;
            value(i, j) = kept ? static_cast<std::uint8_t>(model.mask.at(i, j)) : std::uint8_t{0};
        });
        smooth->convolve(ConvolutionKernel(-1.0f, 1.5f, 0.33333334f));
        over([&](std::int32_t i, std::int32_t j) { model.mask.set(i, j, value(i, j)); });
    }

    const LogCatcher log;
    DoodleFloodFillOperation doodle(picture.box, picture.box);
    doodle.setForceFallback(force);
    doodle.run(x, y, static_cast<float>(tolerance) / 255.0f, *smartOf(picture));
    EXPECT_EQ(log.lines, reverts ? "Reverting to BasicFill!\n" : "");
    EXPECT_TRUE(bytesOf(*doodle.mask(), picture.box) == model.mask.bytes())
        << "from " << x << ", " << y << " at " << tolerance;
    return reverts;
}

}  // namespace brushwork::test
