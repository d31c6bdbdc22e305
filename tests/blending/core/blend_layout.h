// A random arrangement of images under a blender, and the plain loop that tells what it must give.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "blending/core/page_image.h"
#include "blending/core/recording_blender.h"
#include "image/chain/vector_image.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_const_img.h"
#include "image/work/il_pattern_img.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork::test {

inline std::uint8_t contentOf(std::uint32_t seed, std::int32_t x, std::int32_t y, std::int32_t c) {
    std::uint32_t h = seed + static_cast<std::uint32_t>(x) * 0x9E3779B1U +
                      static_cast<std::uint32_t>(y) * 0x85EBCA77U +
                      static_cast<std::uint32_t>(c) * 0xC2B2AE3DU;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    return static_cast<std::uint8_t>(h >> 24);
}

// One input: the image, and its pixels as anybody would tell them.
struct LayoutInput {
    explicit LayoutInput(const char* name = "none") : kind(name) {}

    std::string kind;
    Ref<ilImage> image;
    std::int32_t x = 0, y = 0;
    std::function<bool(std::int32_t, std::int32_t)> has;
    std::function<std::uint8_t(std::int32_t, std::int32_t, std::int32_t)> value;
    Ref<PageImage> pages;  // if it is one

    explicit operator bool() const { return bool(image); }
    // At places of the blend.
    [[nodiscard]] bool covers(std::int32_t px, std::int32_t py) const {
        return !image || has(px - x, py - y);
    }
    [[nodiscard]] int at(std::int32_t px, std::int32_t py, std::int32_t c) const {
        return value(px - x, py - y, c);
    }
};

class BlendLayout {
  public:
    using Random = std::mt19937;

    explicit BlendLayout(std::uint32_t seed) : random_(seed), seed_(seed) {
        channels_ = draw(0, 2) == 0 ? 1 : 4;
        target_ = writableInput();
        if (channels_ == 4 && draw(0, 1)) second_ = writableInput();
        source_ = draw(0, 7) == 0 ? target_ : readableInput(channels_);
        source2_ = draw(0, 2) == 0 && source_ ? readableInput(channels_) : LayoutInput{};
        mask_ = readableInput(1);
        reducedOpacity_ = draw(0, 2) == 0;
        color_ = static_cast<std::uint32_t>(random_());
        constantMask_ = static_cast<std::uint8_t>(draw(0, 255));
    }

    std::int32_t draw(std::int32_t low, std::int32_t high) {
        return std::uniform_int_distribution<std::int32_t>(low, high)(random_);
    }
    ilTile box() { return flatTile(draw(-250, 200), draw(-250, 200), draw(1, 420), draw(1, 330)); }

    void bind(RecordingBlender& blender) const {
        blender.setDestination(target_.image.get(), target_.x, target_.y);
        blender.setSecondDestination(second_.image.get(), second_.x, second_.y);
        blender.setSource(source_.image.get(), source_.x, source_.y, false);
        blender.setSecondSource(source2_.image.get(), source2_.x, source2_.y, false);
        blender.setMask(mask_.image.get(), mask_.x, mask_.y, false);
        blender.setOpacity(reducedOpacity_ ? 0.5F : 1.0F);
        blender.setConstantColor(color_);
        blender.setConstantMask(constantMask_);
    }

    // Foretells a run over places that `covered` names, all within the box.
    void expect(const ilTile& box, const std::function<bool(std::int32_t, std::int32_t)>& covered) {
        box_ = box;
        expected_.clear();
        expectedLow_.clear();
        blended_ = 0;
        for (std::int32_t y = box.y; y < box.endY(); ++y)
            for (std::int32_t x = box.x; x < box.endX(); ++x) {
                const bool live = covered(x, y) && target_.covers(x, y) && second_.covers(x, y) &&
                                  source_.covers(x, y) && source2_.covers(x, y) &&
                                  mask_.covers(x, y);
                blended_ += live;
                for (std::int32_t c = 0; c < channels_; ++c) expectByte(x, y, c, live);
            }
    }
    void expect(const ilTile& box) {
        expect(box, [](std::int32_t, std::int32_t) { return true; });
    }
    [[nodiscard]] std::uint64_t blended() const { return blended_; }

    // Compares the targets with what was foretold, and with what they held outside the box.
    void check() const {
        checkTarget(target_, expected_);
        if (second_) checkTarget(second_, expectedLow_);
        for (const LayoutInput* input : {&target_, &second_, &source_, &source2_, &mask_})
            if (input->pages) {
                ASSERT_EQ(input->pages->openLocks, 0);
            }
    }

    [[nodiscard]] std::string text() const {
        return "seed " + std::to_string(seed_) + " channels " + std::to_string(channels_) +
               " target " + target_.kind + " second " + second_.kind + " source " + source_.kind +
               " source2 " + source2_.kind + " mask " + mask_.kind;
    }

  private:
    void expectByte(std::int32_t x, std::int32_t y, std::int32_t c, bool live) {
        const bool exists = target_.covers(x, y);
        const int high = exists ? target_.at(x, y, c) : 0;
        const bool lowExists = second_ && second_.covers(x, y);
        const int low = lowExists ? second_.at(x, y, c) : 0;
        const auto constant = static_cast<int>(color_ >> (channels_ == 1 ? 0 : 8 * c)) & 0xFF;
        if (!live) {
            expected_.push_back(static_cast<std::uint8_t>(high));
            expectedLow_.push_back(static_cast<std::uint8_t>(low));
            return;
        }
        const int source = source_ ? source_.at(x, y, c) : constant;
        const int source2 = source2_ ? source2_.at(x, y, c) : noSource2;
        const int mask = mask_ ? mask_.at(x, y, 0) : reducedOpacity_ ? constantMask_ : noMask;
        expected_.push_back(recorded(high, source, source2, mask));
        expectedLow_.push_back(recordedLow(low, high, source));
    }

    void checkTarget(const LayoutInput& target, const std::vector<std::uint8_t>& expected) const {
        std::size_t n = 0;
        for (std::int32_t y = box_.y; y < box_.endY(); ++y)
            for (std::int32_t x = box_.x; x < box_.endX(); ++x)
                for (std::int32_t c = 0; c < channels_; ++c, ++n) {
                    if (!target.covers(x, y)) continue;
                    ASSERT_EQ(target.at(x, y, c), expected[n]) << x << ", " << y << " " << text();
                }
        // Outside nothing has changed: the images hold what they were made with.
        const auto inBox = [&](std::int32_t x, std::int32_t y) {
            return x >= box_.x && y >= box_.y && x < box_.endX() && y < box_.endY();
        };
        const auto& content = contents_.at(target.image.get());
        const auto scan = [&](std::int32_t ix, std::int32_t iy, std::int32_t w, std::int32_t h,
                              std::int32_t step = 1) {
            for (std::int32_t y = iy; y < iy + h; y += step)
                for (std::int32_t x = ix; x < ix + w; x += step)
                    for (std::int32_t c = 0; c < channels_; ++c)
                        if (!inBox(x + target.x, y + target.y)) {
                            ASSERT_EQ(target.value(x, y, c), content(x, y, c))
                                << "outside at " << x << ", " << y << " " << text();
                        }
        };
        if (ilSmartImage::isSmartImage(target.image.get()) && !target.pages)
            scan(-300, -300, 900, 900, 7);  // a pixel takes a lock here
        else if (!target.pages)
            scan(0, 0, target.image->sizeX(), target.image->sizeY());
        else
            for (const auto& [x, y] : target.pages->places()) scan(x, y, 128, 128);
    }

    PageImage::Content content() {
        const auto seed = static_cast<std::uint32_t>(random_());
        return [seed](std::int32_t x, std::int32_t y, std::int32_t c) {
            return contentOf(seed, x, y, c);
        };
    }
    void place(LayoutInput& input) {
        input.x = draw(-160, 160);
        input.y = draw(-160, 160);
    }
    void bound(LayoutInput& input, std::int32_t w, std::int32_t h) {
        input.has = [w, h](std::int32_t x, std::int32_t y) {
            return x >= 0 && y >= 0 && x < w && y < h;
        };
    }

    LayoutInput memoryInput(std::int32_t channels) {
        LayoutInput input("memory");
        place(input);
        const std::int32_t w = draw(1, 300);
        const std::int32_t h = draw(1, 300);
        const auto image = makeRef<ilSPMemoryImg>(w, h, channels);
        const auto fill = content();
        for (std::int32_t y = 0; y < h; ++y)
            for (std::int32_t x = 0; x < w; ++x)
                for (std::int32_t c = 0; c < channels; ++c)
                    image->data()[(y * w + x) * channels + c] = fill(x, y, c);
        bound(input, w, h);
        input.value = [data = image->data(), w, channels](auto x, auto y, auto c) {
            return data[(y * w + x) * channels + c];
        };
        input.image = image;
        contents_[image.get()] = fill;
        return input;
    }
    LayoutInput pageInput(std::int32_t channels) {
        LayoutInput input("pages");
        place(input);
        const auto fill = content();
        input.pages = makeRef<PageImage>(channels, fill);
        const std::int32_t hole = draw(0, 2) ? -1 : draw(0, 3);
        const auto refuses = [hole](std::int32_t x, std::int32_t y) {
            return hole == (((x >> 7) & 1) | ((y >> 6) & 2));
        };
        if (hole >= 0) input.pages->refuses = refuses;
        input.has = [refuses](auto x, auto y) { return !refuses(x, y); };
        input.value = [image = input.pages.get()](auto x, auto y, auto c) {
            return image->at(x, y, c);
        };
        input.image = input.pages;
        contents_[input.image.get()] = fill;
        return input;
    }
    // A box of pixels on a fill that goes on without end.
    LayoutInput smartInput(std::int32_t channels) {
        LayoutInput input("smart");
        place(input);
        ilPixel fillPixel(TypeUChar, channels);
        for (std::int32_t c = 0; c < channels; ++c) fillPixel.setChannel(c, draw(0, 255));
        const auto image = makeRef<ilSmartImage>(fillPixel);
        const ilTile box = flatTile(draw(-200, 0), draw(-200, 0), draw(1, 300), draw(1, 300));
        const auto inner = content();
        const auto fill = [=](std::int32_t x, std::int32_t y, std::int32_t c) {
            return box.contains(flatTile(x, y, 1, 1)) ? inner(x, y, c) : fillPixel.data()[c];
        };
        std::vector<std::uint8_t> pixels;
        for (std::int32_t y = box.y; y < box.endY(); ++y)
            for (std::int32_t x = box.x; x < box.endX(); ++x)
                for (std::int32_t c = 0; c < channels; ++c) pixels.push_back(inner(x, y, c));
        EXPECT_EQ(image->writeRegion(box, pixels.data(), box), 0);
        input.has = [](auto, auto) { return true; };
        input.value = [smart = image.get()](auto x, auto y, auto c) {
            return static_cast<std::uint8_t>(smart->getPixel(x, y) >> (8 * c));
        };
        input.image = image;
        contents_[image.get()] = fill;
        return input;
    }
    LayoutInput constInput(std::int32_t channels) {
        LayoutInput input("constant");
        place(input);
        ilPixel pixel(TypeUChar, channels);
        for (std::int32_t c = 0; c < channels; ++c) pixel.setChannel(c, draw(0, 255));
        const auto image = makeRef<ilConstImg>(pixel);
        const std::int32_t w = draw(1, 400);
        const std::int32_t h = draw(1, 400);
        EXPECT_EQ(image->setSize(w, h, 1, channels), 0);
        bound(input, w, h);
        input.value = [pixel](auto, auto, auto c) { return pixel.data()[c]; };
        input.image = image;
        return input;
    }
    // Pages of an odd size that share a border with their neighbours.
    LayoutInput borderInput(std::int32_t channels) {
        LayoutInput input("bordered");
        place(input);
        const std::int32_t w = draw(1, 90);
        const std::int32_t h = draw(1, 90);
        const auto image = makeRef<VectorImage>(w, h, 1, channels);
        const std::int32_t border = draw(0, 5);
        image->setPages(2 * border + draw(7, 40), 2 * border + draw(7, 40), 1, border);
        const auto fill = content();
        for (std::int32_t y = 0; y < h; ++y)
            for (std::int32_t x = 0; x < w; ++x)
                for (std::int32_t c = 0; c < channels; ++c)
                    image->at(x, y).setChannel(c, fill(x, y, c));
        bound(input, w, h);
        input.value = fill;
        input.image = image;
        return input;
    }
    LayoutInput patternInput() {
        LayoutInput input = memoryInput(1);
        const std::int32_t w = input.image->sizeX();
        const std::int32_t h = input.image->sizeY();
        const auto pattern = makeRef<ilPatternImg>(input.image.get());
        LayoutInput result("pattern");
        place(result);
        result.has = [](auto, auto) { return true; };
        result.value = [fill = contents_.at(input.image.get()), w, h](auto x, auto y, auto c) {
            return fill(((x % w) + w) % w, ((y % h) + h) % h, c);
        };
        result.image = pattern;
        return result;
    }

    LayoutInput writableInput() {
        switch (draw(0, 2)) {
            case 0: return memoryInput(channels_);
            case 1: return pageInput(channels_);
            default: return smartInput(channels_);
        }
    }
    LayoutInput readableInput(std::int32_t channels) {
        switch (draw(0, channels == 1 ? 6 : 5)) {
            case 0: return LayoutInput{};
            case 1: return memoryInput(channels);
            case 2: return pageInput(channels);
            case 3: return smartInput(channels);
            case 4: return constInput(channels);
            case 5: return borderInput(channels);
            default: return patternInput();
        }
    }

    Random random_;
    std::uint32_t seed_;
    std::int32_t channels_ = 4;
    LayoutInput target_, second_, source_, source2_, mask_;
    bool reducedOpacity_ = false;
    std::uint32_t color_ = 0;
    std::uint8_t constantMask_ = 255;
    std::map<const ilImage*, PageImage::Content> contents_;
    ilTile box_;
    std::vector<std::uint8_t> expected_, expectedLow_;
    std::uint64_t blended_ = 0;
};

}  // namespace brushwork::test
