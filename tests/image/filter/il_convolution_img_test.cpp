#include "image/filter/il_convolution_img.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "brushwork/ref.h"
#include "image/filter/fast_blur.h"
#include "image/filter/kernel_passes.h"

namespace brushwork {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int width = 23;
constexpr int height = 17;

Bytes noise(std::size_t channels) {
    std::mt19937 random(1);
    Bytes bytes(width * height * channels);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return bytes;
}

// A copy of the pixels after the filter, through an image that wraps `source`.
Bytes convolved(Bytes& source, std::int32_t channels, const ConvolutionKernel& kernel) {
    const Ref<ilConvolutionImg> image(new ilConvolutionImg(source.data(), width, height, 1,
                                                           channels, TypeUChar, OrderInterleaved));
    const Bytes before = source;
    EXPECT_EQ(image->convolve(kernel), ImageOk);
    EXPECT_EQ(source, before);
    EXPECT_TRUE(image->ownsBuffer());
    return {image->data(), image->data() + image->byteSize()};
}

TEST(ilConvolutionImg, ChoosesTheRoutine) {
    const float even[] = {0.5f, 0.25f, 0.5f, -0.25f};
    const ConvolutionKernel blur(-1.0f, 4.0f, 0.33333334f);
    const ConvolutionKernel sharpen(0.7f, 2.0f, 0.33333334f);
    const ConvolutionKernel strong(30.0f, 1.0f, 1.0f);
    const ConvolutionKernel table(even, 2);
    ASSERT_NE(sharpen.fixedWeights(), nullptr);
    ASSERT_EQ(strong.fixedWeights(), nullptr);
    ASSERT_NE(table.fixedWeights(), nullptr);

    Bytes one = noise(1);
    Bytes expected(one.size());
    ASSERT_TRUE(fastBlur1(one.data(), expected.data(), width, height, 9));
    EXPECT_EQ(convolved(one, 1, blur), expected);
    convolveFixed1(one.data(), expected.data(), width, height, sharpen.fixedWeights(), 5);
    EXPECT_EQ(convolved(one, 1, sharpen), expected);
    convolveFloat1(one.data(), expected.data(), width, height, strong.weights(), 3);
    EXPECT_EQ(convolved(one, 1, strong), expected);

    Bytes four = noise(4);
    expected.resize(four.size());
    ASSERT_TRUE(fastBlur4(four.data(), expected.data(), width, height, 9));
    EXPECT_EQ(convolved(four, 4, blur), expected);
    convolveFixed4(four.data(), expected.data(), width, height, sharpen.fixedWeights(), 5);
    EXPECT_EQ(convolved(four, 4, sharpen), expected);
    convolveFloat4(four.data(), expected.data(), width, height, table.weights(), 2);
    EXPECT_EQ(convolved(four, 4, table), expected);
}

TEST(ilConvolutionImg, AnyOtherChannelCountIsOneByteAPixel) {
    Bytes three = noise(3);
    Bytes expected = three;
    ASSERT_TRUE(fastBlur1(three.data(), expected.data(), width, height, 5));
    EXPECT_EQ(convolved(three, 3, ConvolutionKernel(-1.0f, 2.0f, 1.0f)), expected);
}

TEST(ilConvolutionImg, IdentityKernelsKeepThePixels) {
    Bytes four = noise(4);
    EXPECT_EQ(convolved(four, 4, ConvolutionKernel(5.0f, 0.0f, 1.0f)), four);
    EXPECT_EQ(convolved(four, 4, ConvolutionKernel(0.0f, 3.0f, 1.0f)), four);
    EXPECT_EQ(convolved(four, 4, ConvolutionKernel(-1.0f, 0.5f, 1.0f)), four);
}

TEST(ilConvolutionImg, RefusesWhatItCannotFilter) {
    const ConvolutionKernel blur(-1.0f, 4.0f, 0.33333334f);
    const Ref<ilConvolutionImg> empty(new ilConvolutionImg());
    EXPECT_EQ(empty->convolve(blur), ImageUnusable);

    Bytes bytes = noise(4);
    const Bytes before = bytes;
    const Ref<ilConvolutionImg> words(
        new ilConvolutionImg(bytes.data(), width, height, 1, 2, TypeUShort, OrderInterleaved));
    EXPECT_EQ(words->convolve(blur), ImageNotAllowed);
    const Ref<ilConvolutionImg> image(
        new ilConvolutionImg(bytes.data(), width, height, 1, 4, TypeUChar, OrderInterleaved));
    EXPECT_EQ(image->convolve(ConvolutionKernel(0.5f, 5000.0f, 1.0f)), ImageUnusable);
    EXPECT_EQ(image->data(), bytes.data());
    EXPECT_EQ(bytes, before);
    EXPECT_STREQ(image->className(), "Convolution Image");
}

}  // namespace
}  // namespace brushwork
