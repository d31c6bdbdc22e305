#include "image/filter/fast_blur.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kernel_recipe.h"

namespace brushwork {
namespace {

using test::AtLevel;
using test::GuardedBytes;
using Bytes = std::vector<std::uint8_t>;

bool fastBlur(std::size_t channels, const std::uint8_t* source, std::uint8_t* target, int width,
              int height, int size) {
    return channels == 4 ? fastBlur4(source, target, width, height, size)
                         : fastBlur1(source, target, width, height, size);
}

Bytes blurred(const Bytes& source, std::size_t channels, int width, int height, int size) {
    Bytes target(source.size(), GuardedBytes::sentinel);
    EXPECT_TRUE(fastBlur(channels, source.data(), target.data(), width, height, size));
    return target;
}

// Looks at every pixel of every window of every place, one line after the other.
Bytes naiveLines(const Bytes& source, int lines, int lineStep, int length, int step, int size) {
    const int half = size / 2;
    const int reach[] = {(half * 65 + 128) / 256, (half * 122 + 128) / 256,
                         (half * 176 + 128) / 256, half};
    Bytes target(source.size());
    for (int line = 0; line < lines; ++line) {
        for (int c = 0; c < length; ++c) {
            int sum = 0;
            int count = 0;
            for (const int r : reach) {
                for (int p = std::max(0, c - r); p <= std::min(length - 1, c + r); ++p) {
                    sum += source[static_cast<std::size_t>(line * lineStep + p * step)];
                    ++count;
                }
            }
            target[static_cast<std::size_t>(line * lineStep + c * step)] =
                static_cast<std::uint8_t>(sum / count);
        }
    }
    return target;
}

// Of one byte a pixel.
Bytes naive(const Bytes& source, int width, int height, int size) {
    const Bytes rows = naiveLines(source, height, width, width, 1, size);
    return naiveLines(rows, width, 1, height, width, size);
}

TEST(FastBlur, DefinitionAgreesWithCountingPixels) {
    const AtLevel level(VectorLevel::Scalar);
    test::Random random(1);
    for (int round = 0; round < 400; ++round) {
        const int width = 1 + static_cast<int>(random() % 24);
        const int height = 1 + static_cast<int>(random() % 24);
        const int size = static_cast<int>(random() % 60);
        Bytes planes[4];
        Bytes pixels(static_cast<std::size_t>(width * height * 4));
        for (std::size_t c = 0; c < 4; ++c) {
            planes[c].resize(static_cast<std::size_t>(width * height));
            for (auto& byte : planes[c]) byte = test::edgyByte(random);
            for (std::size_t i = 0; i < planes[c].size(); ++i) pixels[i * 4 + c] = planes[c][i];
        }
        const Bytes four = blurred(pixels, 4, width, height, size);
        for (std::size_t c = 0; c < 4; ++c) {
            const Bytes expected = naive(planes[c], width, height, size);
            ASSERT_EQ(blurred(planes[c], 1, width, height, size), expected)
                << width << " x " << height << " size " << size;
            for (std::size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(four[i * 4 + c], expected[i])
                    << width << " x " << height << " size " << size << " channel " << c;
            }
        }
    }
}

void compareForms(VectorLevel form, std::size_t channels, int width, int height, int size,
                  std::size_t misalignment, test::Random& random) {
    const std::size_t bytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * channels;
    GuardedBytes source(bytes, misalignment);
    GuardedBytes target(bytes, (misalignment * 7 + 3) % 64);
    source.fill(random);
    Bytes expected;
    {
        const AtLevel level(VectorLevel::Scalar);
        expected = blurred(source.bytes(), channels, width, height, size);
    }
    const AtLevel level(form);
    SCOPED_TRACE(testing::Message()
                 << vectorLevelName(form) << ' ' << width << " x " << height << " x " << channels
                 << " size " << size << " misalignment " << misalignment);
    ASSERT_TRUE(fastBlur(channels, source.data(), target.data(), width, height, size));
    ASSERT_EQ(lastKernelForm(), form);
    ASSERT_EQ(target.bytes(), expected);
    ASSERT_TRUE(target.guardsIntact());
    // In place.
    ASSERT_TRUE(fastBlur(channels, source.data(), source.data(), width, height, size));
    ASSERT_EQ(source.bytes(), expected);
    ASSERT_TRUE(source.guardsIntact());
}

TEST(FastBlur, VectorFormsGiveTheDefinitionsBytes) {
    test::Random random(2);
    for (const VectorLevel form : test::vectorLevels()) {
        for (const std::size_t channels : {std::size_t{1}, std::size_t{4}}) {
            for (int width = 1; width <= 40; ++width) {
                for (const int size : {0, 1, 2, 3, 4, 9, 25, 200}) {
                    const int height = 1 + static_cast<int>(random() % 40);
                    compareForms(form, channels, width, height, size, random() % 64, random);
                    if (HasFatalFailure()) return;
                }
            }
            for (std::size_t misalignment = 0; misalignment < 64; ++misalignment) {
                compareForms(form, channels, 37, 19, 11, misalignment, random);
                if (HasFatalFailure()) return;
            }
            // Wider than a block of columns, higher than the ring.
            compareForms(form, channels, 1100, 9, 41, 1, random);
            compareForms(form, channels, 300, 150, 41, 2, random);
            compareForms(form, channels, 3, 700, 401, 3, random);
            compareForms(form, channels, 700, 2, 1000000, 3, random);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(FastBlur, AConstantStaysWhatItIs) {
    constexpr int width = 61;
    constexpr int height = 43;
    for (int radius = 0; radius <= 200; ++radius) {
        for (const std::size_t channels : {std::size_t{1}, std::size_t{4}}) {
            Bytes source(width * height * channels);
            for (std::size_t i = 0; i < source.size(); ++i) {
                const int values[] = {255, radius, 1, 254};
                source[i] = static_cast<std::uint8_t>(values[i % channels]);
            }
            ASSERT_EQ(blurred(source, channels, width, height, 2 * radius + 1), source)
                << radius << ' ' << channels;
        }
    }
}

TEST(FastBlur, TooManyPixelsForTheReciprocalTakeTheDefinition) {
    // 4 windows of up to 3000 pixels.
    Bytes source(3000);
    test::Random random(3);
    for (auto& byte : source) byte = test::edgyByte(random);
    const Bytes vertical = blurred(source, 1, 1, 3000, 100001);
    EXPECT_EQ(lastKernelForm(), VectorLevel::Scalar);
    EXPECT_EQ(vertical, naive(source, 1, 3000, 100001));
}

TEST(FastBlur, EmptyPicturesAndSidesBelowTwo) {
    std::uint8_t pixel = 7;
    EXPECT_TRUE(fastBlur1(nullptr, &pixel, 0, 5, 3));
    EXPECT_TRUE(fastBlur4(nullptr, &pixel, 5, -1, 3));
    EXPECT_EQ(pixel, 7);
    const Bytes source = {1, 2, 255, 254, 9, 0};
    EXPECT_EQ(blurred(source, 1, 3, 2, -5), source);
    EXPECT_EQ(blurred(source, 1, 3, 2, 1), source);
}

}  // namespace
}  // namespace brushwork
