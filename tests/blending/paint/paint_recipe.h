// What the tests of painters share: a model of pictures and of one pixel's drawing, written as
// plainly as can be, and pictures of random pixels.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "blending/paint/paint_state.h"
#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "image/chain/il_image.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_memory_img.h"

namespace brushwork::test {

using Dice = std::mt19937;

inline int pick(Dice& dice, int from, int to) {
    return from + static_cast<int>(dice() % static_cast<std::uint32_t>(to - from + 1));
}

// Often an edge.
inline std::uint8_t drawByte(Dice& dice) {
    static constexpr std::uint8_t edges[] = {0, 0, 1, 127, 128, 254, 255, 255};
    return pick(dice, 0, 1) == 0 ? edges[pick(dice, 0, 7)]
                                 : static_cast<std::uint8_t>(pick(dice, 0, 255));
}

using Pixel = std::array<std::uint8_t, 4>;

// No colour above alpha.
inline Pixel drawPixel(Dice& dice) {
    const std::uint8_t a = drawByte(dice);
    Pixel p{drawByte(dice), drawByte(dice), drawByte(dice), a};
    for (int c = 0; c < 3; ++c)
        p[static_cast<std::size_t>(c)] = std::min(p[static_cast<std::size_t>(c)], a);
    return p;
}

// A picture as rows of bytes, row 0 first.
struct Picture {
    int width = 0, height = 0, channels = 4;
    std::vector<std::uint8_t> bytes;

    Picture() = default;
    Picture(int w, int h, int c)
        : width(w), height(h), channels(c), bytes(static_cast<std::size_t>(w * h * c)) {}
    Picture(int w, int h, int c, Dice& dice) : Picture(w, h, c) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const Pixel p = drawPixel(dice);
                std::copy_n(p.begin() + (c == 1 ? 3 : 0), c, at(x, y));
            }
    }
    [[nodiscard]] std::uint8_t* at(int x, int y) {
        return bytes.data() + static_cast<std::size_t>((y * width + x) * channels);
    }
    [[nodiscard]] bool has(int x, int y) const {
        return x >= 0 && y >= 0 && x < width && y < height;
    }
    // Zero outside.
    [[nodiscard]] Pixel get(int x, int y) {
        Pixel p{};
        if (has(x, y)) std::copy_n(at(x, y), channels, p.begin());
        return p;
    }
    [[nodiscard]] ilTile box() const { return flatTile(0, 0, width, height); }
};

inline ilImageConfig bytesConfig(int channels) {
    return {TypeUChar, OrderInterleaved, channels};
}

inline Picture pictureOf(ilImage& image, const ilTile& box) {
    Picture picture(box.nx, box.ny, image.channels());
    const ilImageConfig config = bytesConfig(picture.channels);
    EXPECT_EQ(image.readRegion(box, picture.bytes.data(), box, &config), 0);
    return picture;
}

inline Ref<ilSmartImage> smartOf(Picture& picture, int x = 0, int y = 0, std::uint8_t fill = 0) {
    const Pixel outside{fill, fill, fill, fill};
    Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, picture.channels, outside.data())));
    const ilTile box = flatTile(x, y, picture.width, picture.height);
    EXPECT_EQ(image->writeRegion(box, picture.bytes.data(), box), 0);
    return image;
}

inline Ref<ilMemoryImg> memoryOf(Picture& picture) {
    Ref<ilMemoryImg> image(new ilMemoryImg(picture.width, picture.height, 1, picture.channels,
                                           TypeUChar, OrderInterleaved));
    std::copy(picture.bytes.begin(), picture.bytes.end(), image->data());
    return image;
}

inline std::vector<BlendFactors> allPairs() {
    return {pairCopy,        pairOver,          pairUnder, pairKeepInside,
            pairKeepOutside, pairReplaceInside, pairAdd,   pairInvert};
}

// 0 and 255 are exact.
inline int times(int x, int f) {
    return f == 0 ? 0 : f == 255 ? x : x * f / 256;
}

inline int factorOf(int factor, int a, int b) {
    switch (factor) {
        case 0: return 0;
        case 1: return 255;
        case 6: return a;
        case 7: return 255 - a;
        case 8: return b;
        default: return 255 - b;
    }
}

// One pixel. `sourceChannels` of 1 with 4 of the target: the source is a coverage for `color`.
inline Pixel drawnPixel(BlendFactors pair, Pixel s, int sourceChannels, Pixel d, int channels,
                        Pixel color = {}) {
    const int coverage = s[0];
    if (sourceChannels == 1 && channels == 4) {
        for (std::size_t c = 0; c < 4; ++c)
            s[c] = static_cast<std::uint8_t>(times(color[c], coverage));
    }
    int a = sourceChannels == 4 ? s[3] : coverage;
    if (sourceChannels == 4 && channels == 1) s[0] = s[3];
    const int b = channels == 4 ? d[3] : d[0];
    if (sourceChannels == 1 && channels == 4 && pair == pairOver) a = s[3];
    if (channels == 4 && pair == pairOver && a == 0) return d;
    Pixel out{};
    for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c) {
        const int fs = factorOf(pair.source, a, b);
        const int fd = factorOf(pair.target, a, b);
        const int drawn = pair == pairInvert && s[c] == 255 ? fs : times(s[c], fs);
        out[c] = static_cast<std::uint8_t>(std::min(drawn + times(d[c], fd), 255));
    }
    return out;
}

// The nearest to the middle of d and s by m; no value lies halfway.
inline Pixel mixedPixel(Pixel s, Pixel d, int m) {
    Pixel out{};
    for (std::size_t c = 0; c < 4; ++c)
        out[c] = static_cast<std::uint8_t>((2 * (s[c] * m + d[c] * (255 - m)) + 255) / 510);
    return out;
}

inline std::string nameOf(BlendFactors pair) {
    return "(" + std::to_string(pair.source) + ", " + std::to_string(pair.target) + ")";
}

}  // namespace brushwork::test
