// What the tests of layers share: random images, and pictures of them as plain bytes.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "document/layer/layer.h"

namespace brushwork::test {

using Dice = std::mt19937;

inline int pick(Dice& dice, int from, int to) {
    return from + static_cast<int>(dice() % static_cast<std::uint32_t>(to - from + 1));
}

// Often an edge.
inline std::uint8_t anyByte(Dice& dice) {
    static constexpr std::uint8_t edges[] = {0, 0, 1, 127, 128, 254, 255, 255};
    return pick(dice, 0, 1) == 0 ? edges[pick(dice, 0, 7)]
                                 : static_cast<std::uint8_t>(pick(dice, 0, 255));
}

// Crosses page borders in both directions.
inline constexpr ilTile frame = flatTile(-140, -140, 300, 290);

inline ilTile anyBox(Dice& dice, int most = 200) {
    return flatTile(pick(dice, -130, 100), pick(dice, -130, 100), pick(dice, 1, most),
                    pick(dice, 1, most));
}

inline Ref<ilSmartImage> blank(int channels, std::uint8_t fill = 0) {
    const std::uint8_t bytes[4] = {fill, fill, fill, fill};
    return Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, channels, bytes)));
}

// Premultiplied noise.
inline void paintNoise(ilImage& image, const ilTile& box, Dice& dice) {
    const int channels = image.channels();
    std::vector<std::uint8_t> bytes;
    for (int n = 0; n < box.nx * box.ny; ++n) {
        const std::uint8_t alpha = anyByte(dice);
        for (int c = 0; c < channels - 1; ++c) bytes.push_back(std::min(anyByte(dice), alpha));
        bytes.push_back(alpha);
    }
    image.writeRegion(box, bytes.data(), box);
}

inline void paintSolid(ilImage& image, const ilTile& box, std::vector<std::uint8_t> pixel) {
    image.fillRegion(box, ilPixel(TypeUChar, image.channels(), pixel.data()));
}

inline Ref<ilSmartImage> noise(int channels, const ilTile& box, Dice& dice, std::uint8_t fill = 0) {
    Ref<ilSmartImage> image = blank(channels, fill);
    paintNoise(*image, box, dice);
    return image;
}

inline std::vector<std::uint8_t> bytesOf(ilImage* image, const ilTile& box = frame) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(box.nx) *
                                    static_cast<std::size_t>(box.ny) *
                                    static_cast<std::size_t>(image->channels()));
    EXPECT_EQ(image->readRegion(box, bytes.data(), box), ImageOk);
    return bytes;
}

inline ilTile boxOf(ilImage* image) {
    ilTile box;
    if (ilSmartImage* const smart = ilSmartImage::from(image)) smart->bounds(box);
    return box;
}

inline bool holds(const ilTile& box, int x, int y) {
    return x >= box.x && y >= box.y && x < box.endX() && y < box.endY();
}

// The first place at which two pictures of the frame differ.
inline std::string difference(const std::vector<std::uint8_t>& is,
                              const std::vector<std::uint8_t>& wanted, int channels,
                              const ilTile& box = frame) {
    if (is.size() != wanted.size()) return "sizes differ";
    const auto at = std::mismatch(is.begin(), is.end(), wanted.begin());
    if (at.first == is.end()) return {};
    const auto n = static_cast<int>(at.first - is.begin());
    const int place = n / channels;
    return "at (" + std::to_string(box.x + place % box.nx) + ", " +
           std::to_string(box.y + place / box.nx) + ") channel " + std::to_string(n % channels) +
           ": " + std::to_string(*at.first) + ", wanted " + std::to_string(*at.second);
}

inline Ref<Layer> makeLayer(LayerRole role, const Ref<ilSmartImage>& color, float x = 0.0f,
                            float y = 0.0f) {
    constexpr std::uint32_t movable = Layer::plainFlags | Layer::Movable;
    return Ref<Layer>(new Layer(color.get(), nullptr, role, movable, x, y));
}

// Stacks the layers from the bottom up.
inline void link(const std::vector<Ref<Layer>>& layers) {
    for (std::size_t n = 0; n < layers.size(); ++n) {
        layers[n]->next = n + 1 < layers.size() ? layers[n + 1] : Ref<Layer>();
        layers[n]->previous = n > 0 ? layers[n - 1].get() : nullptr;
    }
}

// x times f of 255, the painters' way.
inline int partOf(int x, int f) {
    return f == 255 ? x : x * f >> 8;
}

// A group as layers see it.
class FakeGroup : public Layer, public LayerParent {
  public:
    explicit FakeGroup(bool passThrough)
        : Layer(LayerRole::Paint, plainFlags), passThrough_(passThrough) {}

    Layer& asLayer() override { return *this; }
    bool isPassThrough() const override { return passThrough_; }
    void markCache(const ilTile* box) override {
        ++marks;
        if (box) lastBox = *box;
    }
    void eachMember(const std::function<void(Layer&)>&) override {}

    int marks = 0;
    ilTile lastBox;

  private:
    bool passThrough_;
};

}  // namespace brushwork::test
