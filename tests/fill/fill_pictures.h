// Pictures and masks for the tests of floods: plain arrays, drawings made from seeds, and the way
// into and out of smart images.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork::test {

using Random = std::mt19937;

// Words of 4 channels, or values of 1. `box` is where the picture lies.
struct Picture {
    ilTile box;
    std::int32_t channels;
    std::vector<std::uint32_t> pixels;

    Picture(const ilTile& place, std::int32_t channelCount, std::uint32_t fill)
        : box(place),
          channels(channelCount),
          pixels(static_cast<std::size_t>(place.nx) * static_cast<std::size_t>(place.ny), fill) {}

    [[nodiscard]] std::size_t index(std::int32_t x, std::int32_t y) const {
        return static_cast<std::size_t>(y - box.y) * static_cast<std::size_t>(box.nx) +
               static_cast<std::size_t>(x - box.x);
    }
    [[nodiscard]] bool holds(std::int32_t x, std::int32_t y) const {
        return x >= box.x && y >= box.y && x < box.endX() && y < box.endY();
    }
    [[nodiscard]] std::uint32_t at(std::int32_t x, std::int32_t y) const {
        return pixels[index(x, y)];
    }
    void set(std::int32_t x, std::int32_t y, std::uint32_t value) {
        if (holds(x, y)) pixels[index(x, y)] = value;
    }
    void fill(const ilTile& part, std::uint32_t value) {
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            for (std::int32_t x = part.x; x < part.endX(); ++x) set(x, y, value);
    }
    [[nodiscard]] std::vector<std::uint8_t> bytes() const {
        std::vector<std::uint8_t> out(pixels.size() * static_cast<std::size_t>(channels));
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            if (channels == 1)
                out[i] = static_cast<std::uint8_t>(pixels[i]);
            else
                std::memcpy(&out[4 * i], &pixels[i], 4);
        }
        return out;
    }
};

inline Ref<ilSmartImage> smartOf(const Picture& picture) {
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, picture.channels)));
    image->writeRegion(picture.box, picture.bytes().data(), picture.box);
    return image;
}

// One channel, values of a box.
inline std::vector<std::uint8_t> bytesOf(ilSmartImage& image, const ilTile& box) {
    std::vector<std::uint8_t> out(static_cast<std::size_t>(box.nx) *
                                  static_cast<std::size_t>(box.ny) *
                                  static_cast<std::size_t>(image.channels()));
    image.readRegion(box, out.data(), box);
    return out;
}

inline Ref<ilSmartImage> newMask() {
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, 1)));
}

inline std::uint32_t between(Random& random, std::uint32_t low, std::uint32_t high) {
    return low + static_cast<std::uint32_t>(random()) % (high - low + 1);
}

inline std::uint32_t greyWord(std::uint32_t value, std::uint32_t alpha = 255) {
    return value | value << 8 | value << 16 | alpha << 24;
}

enum class Motif { Noise, Drawing, Gradient, Solids };

inline void drawLine(Picture& picture, Random& random, std::uint32_t ink) {
    const auto& box = picture.box;
    const auto coordinate = [&](std::int32_t start, std::int32_t extent) {
        return static_cast<double>(start) + between(random, 0, 1000) / 1000.0 * extent;
    };
    const double x0 = coordinate(box.x, box.nx);
    const double y0 = coordinate(box.y, box.ny);
    const double x1 = coordinate(box.x, box.nx);
    const double y1 = coordinate(box.y, box.ny);
    const auto steps = static_cast<int>(2 * std::max(box.nx, box.ny));
    const int gap = static_cast<int>(between(random, 0, static_cast<std::uint32_t>(steps)));
    for (int i = 0; i < steps; ++i) {
        if (i >= gap && i < gap + 6) continue;
        const double t = static_cast<double>(i) / steps;
        const auto x = static_cast<std::int32_t>(x0 + (x1 - x0) * t);
        const auto y = static_cast<std::int32_t>(y0 + (y1 - y0) * t);
        picture.set(x, y, ink);
        picture.set(x + 1, y,
                    picture.at(std::clamp(x, box.x, box.endX() - 1),
                               std::clamp(y, box.y, box.endY() - 1)) == ink
                        ? greyWord(between(random, 90, 250))
                        : ink);
        picture.set(x, y + 1, ink);
    }
}

inline Picture makePicture(Motif motif, const ilTile& box, std::int32_t channels, Random& random) {
    Picture picture(box, channels, greyWord(255));
    switch (motif) {
        case Motif::Noise: {
            const std::uint32_t walls = between(random, 10, 45);
            for (auto& pixel : picture.pixels)
                pixel = between(random, 0, 99) < walls ? static_cast<std::uint32_t>(random())
                                                       : greyWord(255 - between(random, 0, 12));
            break;
        }
        case Motif::Drawing:
            for (int i = 0; i < 25; ++i) drawLine(picture, random, greyWord(20));
            break;
        case Motif::Gradient:
            for (std::int32_t y = box.y; y < box.endY(); ++y)
                for (std::int32_t x = box.x; x < box.endX(); ++x)
                    picture.set(
                        x, y,
                        greyWord(static_cast<std::uint32_t>((x - box.x) / 2 + y - box.y) % 256));
            break;
        case Motif::Solids:
            // Whole pages of a value and odd boxes of others.
            for (int i = 0; i < 12; ++i) {
                const auto px = static_cast<std::int32_t>(between(random, 0, 4)) * 128;
                const auto py = static_cast<std::int32_t>(between(random, 0, 4)) * 128;
                picture.fill(
                    flatTile((box.x & ~127) + px, (box.y & ~127) + py, 128, 128),
                    greyWord(between(random, 190, 255), between(random, 0, 3) == 0 ? 0 : 255));
            }
            for (int i = 0; i < 6; ++i)
                picture.fill(flatTile(box.x + static_cast<std::int32_t>(between(random, 0, 400)),
                                      box.y + static_cast<std::int32_t>(between(random, 0, 400)),
                                      static_cast<std::int32_t>(between(random, 1, 90)),
                                      static_cast<std::int32_t>(between(random, 1, 90))),
                             greyWord(between(random, 100, 255)));
            break;
    }
    if (channels == 1)
        for (auto& pixel : picture.pixels) pixel &= 0xFF;
    return picture;
}

}  // namespace brushwork::test
