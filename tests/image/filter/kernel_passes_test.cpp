#include "image/filter/kernel_passes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "kernel_recipe.h"

namespace brushwork {
namespace {

using test::AtLevel;
using test::GuardedBytes;
using Bytes = std::vector<std::uint8_t>;

void convolve(std::size_t channels, const std::uint8_t* source, std::uint8_t* target, int width,
              int height, const std::vector<float>& weights, int size) {
    (channels == 4 ? convolveFloat4 : convolveFloat1)(source, target, width, height, weights.data(),
                                                      size);
}

void convolve(std::size_t channels, const std::uint8_t* source, std::uint8_t* target, int width,
              int height, const std::vector<std::int16_t>& weights, int size) {
    (channels == 4 ? convolveFixed4 : convolveFixed1)(source, target, width, height, weights.data(),
                                                      size);
}

// Floor of numerator / denominator in whole numbers.
int floorDiv(int numerator, int denominator) {
    return static_cast<int>(std::floor(static_cast<double>(numerator) / denominator));
}

int naiveTotal(const Bytes& window, const std::vector<float>& weights, std::size_t) {
    float sum = 0.0f;
    for (std::size_t i = 0; i < window.size(); ++i) {
        const float product = static_cast<float>(window[i]) * weights[i];
        sum = sum + product;
    }
    if (std::isnan(sum)) return 0;
    return static_cast<int>(std::trunc(std::clamp(static_cast<double>(sum), -1.0, 300.0)));
}

int naiveTotal(const Bytes& window, const std::vector<std::int16_t>& weights,
               std::size_t channels) {
    int sum = 0;
    for (std::size_t i = 0; i < window.size(); ++i) {
        sum += floorDiv(window[i] * 128 * weights[i], 65536);
        if (channels == 4) sum = std::max(-32768, std::min(32767, sum));
    }
    return floorDiv(sum, 4);
}

// Copies each window out and adds it up.
template <class Weight>
Bytes naive(const Bytes& source, std::size_t channels, int width, int height,
            const std::vector<Weight>& weights, int size) {
    Bytes target = source;
    const auto at = [&](int x, int y, std::size_t c) {
        return static_cast<std::size_t>(y * width + x) * channels + c;
    };
    const int half = size / 2;
    for (int y = half; y < height - half; ++y) {
        for (int x = half; x < width - half; ++x) {
            for (std::size_t c = 0; c < channels; ++c) {
                Bytes window;
                for (int j = 0; j < size; ++j) {
                    for (int i = 0; i < size; ++i) {
                        window.push_back(source[at(x - half + i, y - half + j, c)]);
                    }
                }
                const int total = naiveTotal(window, weights, channels);
                target[at(x, y, c)] = static_cast<std::uint8_t>(std::clamp(total, 0, 255));
            }
        }
    }
    return target;
}

template <class Weight>
struct Trial {
    std::size_t channels = 1;
    int width = 1;
    int height = 1;
    int size = 1;
    std::size_t misalignment = 0;
    std::vector<Weight> weights;
};

template <class Weight>
std::ostream& operator<<(std::ostream& out, const Trial<Weight>& t) {
    out << t.width << " x " << t.height << " x " << t.channels << " size " << t.size
        << " misalignment " << t.misalignment << " weights";
    for (const Weight weight : t.weights) out << ' ' << weight;
    return out;
}

template <class Weight>
void check(const Trial<Weight>& t, const std::vector<VectorLevel>& levels, bool mustReach,
           test::Random& random) {
    const std::size_t bytes =
        static_cast<std::size_t>(t.width) * static_cast<std::size_t>(t.height) * t.channels;
    GuardedBytes source(bytes, t.misalignment);
    source.fill(random);
    const Bytes expected = naive(source.bytes(), t.channels, t.width, t.height, t.weights, t.size);
    for (const VectorLevel form : levels) {
        GuardedBytes target(bytes, (t.misalignment * 5 + 1) % 64);
        const AtLevel level(form);
        convolve(t.channels, source.data(), target.data(), t.width, t.height, t.weights, t.size);
        ASSERT_EQ(target.bytes(), expected) << vectorLevelName(form) << ' ' << t;
        ASSERT_TRUE(target.guardsIntact()) << vectorLevelName(form) << ' ' << t;
        if (mustReach) {
            ASSERT_EQ(lastKernelForm(), form) << t;
        }
    }
}

float drawWeight(test::Random& random, float largest) {
    return (static_cast<float>(random() % 20001) / 10000.0f - 1.0f) * largest;
}
std::int16_t drawWeight(test::Random& random, std::int16_t largest) {
    return static_cast<std::int16_t>(static_cast<int>(random() % 65536) % (2 * largest + 1) -
                                     largest);
}

// The scalar form and each vector form against the naive one.
template <class Weight>
void checkMany(Weight largest, bool oneByteReaches, std::uint32_t seed) {
    test::Random random(seed);
    std::vector<VectorLevel> levels = test::vectorLevels();
    levels.push_back(VectorLevel::Scalar);
    for (int round = 0; round < 1200; ++round) {
        Trial<Weight> t;
        t.channels = round % 2 == 0 ? 4 : 1;
        t.size = 1 + static_cast<int>(random() % 6);
        t.width = 1 + round % 60;
        t.height = 1 + static_cast<int>(random() % 9);
        t.misalignment = static_cast<std::size_t>(round) % 64;
        for (int i = 0; i < t.size * t.size; ++i) {
            t.weights.push_back(drawWeight(random, largest));
        }
        const int half = t.size / 2;
        const std::size_t lanes =
            static_cast<std::size_t>(std::max(0, t.width - 2 * half)) * t.channels;
        const bool reaches =
            lanes >= 32 && t.height > 2 * half && (t.channels == 4 || oneByteReaches);
        check(t, levels, reaches, random);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(KernelPasses, FloatFormsAgreeWithTheNaiveOne) {
    checkMany(1.5f, true, 1);
    checkMany(100.0f, true, 2);
}

TEST(KernelPasses, FixedFormsAgreeWithTheNaiveOne) {
    checkMany(std::int16_t{700}, true, 3);
    // Four channels saturate after a tap or two; one channel has 32 bits.
    checkMany(std::int16_t{32767}, false, 4);
}

TEST(KernelPasses, TotalsBeyondAByte) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<VectorLevel> levels = test::vectorLevels();
    levels.push_back(VectorLevel::Scalar);
    for (const VectorLevel form : levels) {
        const AtLevel level(form);
        for (const auto& [weight, expected] :
             {std::pair{1e30f, 255}, std::pair{inf, 255}, std::pair{-inf, 0}, std::pair{nan, 0},
              std::pair{-1.0f, 0}, std::pair{1.0f, 3}, std::pair{0.9999f, 2}}) {
            const Bytes source(64, 3);
            Bytes target(64);
            convolveFloat1(source.data(), target.data(), 64, 1, &weight, 1);
            EXPECT_EQ(target, Bytes(64, static_cast<std::uint8_t>(expected)))
                << weight << ' ' << vectorLevelName(form);
        }
    }
}

TEST(KernelPasses, SmallPicturesAndEmptyKernelsCopy) {
    const Bytes source = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const std::vector<float> zeros(25, 0.0f);
    const std::vector<std::int16_t> fixedZeros(25, 0);
    Bytes target(12);
    convolveFloat1(source.data(), target.data(), 4, 3, zeros.data(), 5);
    EXPECT_EQ(target, source);
    target.assign(12, 0);
    convolveFixed4(source.data(), target.data(), 3, 1, fixedZeros.data(), 3);
    EXPECT_EQ(target, source);
    target.assign(12, 0);
    convolveFixed1(source.data(), target.data(), 12, 1, nullptr, 0);
    EXPECT_EQ(target, source);
    convolveFloat4(source.data(), target.data(), 0, 7, zeros.data(), 3);
    EXPECT_EQ(target, source);
}

}  // namespace
}  // namespace brushwork
