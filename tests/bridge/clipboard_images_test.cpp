// Clipboard forms and pictures in blocks, beside files that other programs wrote.
#include "bridge/client/clipboard_images.h"

#include "bridge/client/memory_picture.h"
#include "bridge/client/stream_images.h"
#include "client_run.h"

namespace brushwork {
namespace {

using platform::GlobalBlock;
using platform::LockedBlock;
using test::pixelsOf;
using test::readBytes;
using test::TempFolder;
using test::wide;
using Bytes = std::vector<std::uint8_t>;

constexpr int width = 13, height = 7;

std::string fixture(const std::string& name) {
    return std::string(BRUSHWORK_TEST_DATA) + "/clipboard/" + name;
}

Bytes bytesOf(const GlobalBlock& block) {
    const LockedBlock lock(block);
    return {lock.bytes().begin(), lock.bytes().end()};
}

// The pattern of the fixtures at a place that counts from the top.
std::array<int, 4> patternAt(int x, int y) {
    return {x * 19 % 256, y * 37 % 256, x * y * 3 % 256, 255 - x * y};
}

// In the engine's form.
Ref<ilSPMemoryImg> patternImage() {
    const Ref<ilSPMemoryImg> image(new ilSPMemoryImg(width, height, 4));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::uint8_t* pixel = image->data() + ((height - 1 - y) * width + x) * 4;
            const auto value = patternAt(x, y);
            for (int c = 0; c < 3; ++c)
                pixel[c] =
                    static_cast<std::uint8_t>((value[std::size_t(c)] * value[3] + 127) / 255);
            pixel[3] = static_cast<std::uint8_t>(value[3]);
        }
    return image;
}

void put32(Bytes& bytes, std::size_t at, std::int32_t value) {
    for (unsigned i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> (8 * i));
}

// 40 bytes: size, width, height, planes, depth and compression.
Bytes header(std::int32_t w, std::int32_t h, int depth, int compression, std::size_t size) {
    Bytes bytes(size);
    put32(bytes, 0, 40);
    put32(bytes, 4, w);
    put32(bytes, 8, h);
    bytes[12] = 1;
    bytes[14] = static_cast<std::uint8_t>(depth);
    put32(bytes, 16, compression);
    return bytes;
}

TEST(ClipboardImages, DeviceBitmapsOfAnotherProgramArrive) {
    const auto image = imageFromClipboard(8, GlobalBlock::holding(readBytes(fixture("rgb24.dib"))));
    ASSERT_TRUE(image);
    const auto palette =
        imageFromClipboard(8, GlobalBlock::holding(readBytes(fixture("palette8.dib"))));
    ASSERT_TRUE(palette);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int place = ((height - 1 - y) * width + x) * 4;
            const auto value = patternAt(x, y);
            const int i = (x * 5 + y * 30) % 256;
            const int colour[] = {i * 7 % 256, i * 13 % 256, 255 - i};
            for (int c = 0; c < 3; ++c) {
                EXPECT_EQ(image->data()[place + c], value[std::size_t(c)]);
                EXPECT_EQ(palette->data()[place + c], colour[c]);
            }
            EXPECT_EQ(image->data()[place + 3], 255);
        }
    // A palette whose count is left to the depth.
    Bytes counted = readBytes(fixture("palette8.dib"));
    put32(counted, 32, 0);
    const auto uncounted = imageFromClipboard(8, GlobalBlock::holding(counted));
    ASSERT_TRUE(uncounted);
    EXPECT_EQ(pixelsOf(*uncounted), pixelsOf(*palette));
}

// A file of the well-known test suite is its header and what a clipboard would hold.
TEST(ClipboardImages, BehindTheFileHeaderLiesTheClipboardForm) {
    for (const char* name : {"pal8.bmp", "pal8rletrns.bmp"}) {
        const Bytes file = readBytes(test::picture(name));
        auto bitmap = Gdiplus::Bitmap::fromFile(platform::fromUtf8(test::picture(name)));
        const auto expected = bitmapToImage(&bitmap, {}).image;
        const auto image = imageFromClipboard(8, GlobalBlock::holding(std::span(file).subspan(14)));
        ASSERT_TRUE(expected && image) << name;
        EXPECT_EQ(pixelsOf(*image), pixelsOf(*expected)) << name;
    }
}

TEST(ClipboardImages, MasksStandBehindTheHeader) {
    Bytes dib = header(2, -1, 16, 3, 40 + 12 + 4);
    put32(dib, 40, 0xF800);
    put32(dib, 44, 0x07E0);
    put32(dib, 48, 0x001F);
    put32(dib, 52, static_cast<std::int32_t>(0x001FF800U));  // red, then blue
    const auto image = imageFromClipboard(8, GlobalBlock::holding(dib));
    ASSERT_TRUE(image);
    EXPECT_EQ(pixelsOf(*image), (Bytes{255, 0, 0, 255, 0, 0, 255, 255}));
}

TEST(ClipboardImages, OwnDeviceBitmapsByteByByte) {
    const auto image = patternImage();
    Bytes expected = header(width, height, 32, 0, 40);
    for (std::size_t i = 0; i < image->byteSize(); i += 4) {
        const std::uint8_t* pixel = image->data() + i;
        for (const int c : {2, 1, 0, 3}) expected.push_back(pixel[c]);
    }
    EXPECT_EQ(bytesOf(imageToClipboard(8, image.get())), expected);

    auto picture = MemoryPicture::make(width, height);
    expected = header(width, -height, 24, 0, 40);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c) {
                const auto value = static_cast<std::uint8_t>(patternAt(x, y)[std::size_t(c)]);
                picture->row(y)[x * 4 + 2 - c] = value;
            }
        for (int x = 0; x < width; ++x)
            expected.insert(expected.end(), picture->row(y) + x * 4, picture->row(y) + x * 4 + 3);
        expected.push_back(0);  // 39 bytes and one
    }
    auto bitmap = Gdiplus::Bitmap::fromPicture(std::move(picture));
    const auto block = bitmapToClipboard(8, bitmap);
    EXPECT_EQ(bytesOf(block), expected);
    const auto back = imageFromClipboard(8, block);
    ASSERT_TRUE(back);
    EXPECT_EQ(pixelsOf(*back), pixelsOf(*imageFromClipboard(
                                   8, GlobalBlock::holding(readBytes(fixture("rgb24.dib"))))));
}

TEST(ClipboardImages, TiffBothWays) {
    TempFolder folder;
    const auto arrived =
        imageFromClipboard(6, GlobalBlock::holding(readBytes(fixture("rgba.tif"))));
    ASSERT_TRUE(arrived);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 4; ++c)
                EXPECT_EQ(arrived->data()[((height - 1 - y) * width + x) * 4 + c],
                          patternAt(x, y)[std::size_t(c)]);

    const auto block = imageToClipboard(6, patternImage().get());
    const Bytes bytes = bytesOf(block);
    ASSERT_GT(bytes.size(), 8U);
    EXPECT_EQ(bytes[0], bytes[1]);
    const auto back = imageFromClipboard(6, block);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->width(), width);
    // Alpha stays; colours are off by what premultiplying cost.
    for (std::size_t i = 0; i < back->byteSize(); ++i)
        EXPECT_NEAR(back->data()[i], arrived->data()[i], i % 4 == 3 ? 0 : 1);

    auto bitmap = Gdiplus::Bitmap::fromFile(platform::fromUtf8(fixture("rgba.tif")));
    const auto exact = imageFromClipboard(6, bitmapToClipboard(6, bitmap));
    ASSERT_TRUE(exact);
    EXPECT_EQ(pixelsOf(*exact), pixelsOf(*arrived));
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(ClipboardImages, NothingComesOfNonsense) {
    TempFolder folder;
    const auto image = patternImage();
    auto bitmap = Gdiplus::Bitmap::fromFile(platform::fromUtf8(fixture("rgba.tif")));
    const auto tiff = GlobalBlock::holding(readBytes(fixture("rgba.tif")));
    const Bytes dib = readBytes(fixture("rgb24.dib"));
    for (const std::uint32_t number : {0U, 2U, 7U, 17U}) {
        EXPECT_FALSE(imageToClipboard(number, image.get()));
        EXPECT_FALSE(bitmapToClipboard(number, bitmap));
        EXPECT_FALSE(imageFromClipboard(number, tiff));
    }
    EXPECT_FALSE(imageFromClipboard(8, tiff));
    EXPECT_FALSE(imageFromClipboard(6, GlobalBlock::holding(dib)));
    EXPECT_FALSE(imageFromClipboard(6, {}));
    EXPECT_FALSE(imageFromClipboard(8, {}));
    EXPECT_FALSE(imageToClipboard(6, nullptr));
    auto broken = Gdiplus::Bitmap::fromFile(u"missing");
    EXPECT_FALSE(bitmapToClipboard(6, broken));
    EXPECT_FALSE(bitmapToClipboard(8, broken));

    // Cut anywhere it is no picture, whatever its header claims.
    for (std::size_t size = 1; size < dib.size() - 3; ++size)
        EXPECT_FALSE(imageFromClipboard(8, GlobalBlock::holding(std::span(dib).first(size))));
    for (const std::size_t field : {0U, 4U, 8U, 16U, 32U})
        for (const std::int32_t value : {-1, 0x7FFFFFFF, 0x10000, 39}) {
            Bytes hostile = dib;
            put32(hostile, field, value);
            static_cast<void>(imageFromClipboard(8, GlobalBlock::holding(hostile)));
        }
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(StreamImages, ResourcesBecomeImagesAndBitmaps) {
    static const Bytes grey = readBytes(fixture("grey.png"));
    static const Bytes colour = readBytes(fixture("rgba.tif"));
    static const Bytes text = {'n', 'o', 't', 'h', 'i', 'n', 'g'};
    int module = 0;
    if (!platform::addResource({nullptr, u"GREY"}, grey)) GTEST_SKIP() << "in the program file";
    platform::addResource({&module, u"CUP", u"PICTURE"}, colour);
    platform::addResource({&module, u"TEXT"}, text);
    platform::addResource({&module, u"EMPTY"}, {});

    EXPECT_EQ(resourceToImage({nullptr, u"GREY"})->channels(), 4);
    const auto image = resourceToImage({nullptr, u"GREY"}, GreyDetection::On);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->channels(), 1);
    EXPECT_FALSE(resourceToImage({&module, u"GREY"})) << "another module's";
    EXPECT_FALSE(resourceToImage({&module, u"CUP"})) << "of another type";
    EXPECT_FALSE(resourceToImage({&module, u"TEXT"}));
    EXPECT_FALSE(resourceToImage({&module, u"EMPTY"}));
    EXPECT_FALSE(resourceToBitmapHandle({&module, u"TEXT"}));
    EXPECT_FALSE(resourceToBitmapHandle({&module, u"NONE"}));

    const auto handle = resourceToBitmapHandle({&module, u"CUP", u"PICTURE"});
    const auto layout = handle.layout();
    ASSERT_EQ(layout.width, width);
    ASSERT_EQ(layout.height, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint8_t* pixel =
                layout.bits + layout.stride * static_cast<std::size_t>(y) + x * 4;
            const auto value = patternAt(x, y);
            EXPECT_EQ(pixel[3], value[3]);
            EXPECT_EQ(pixel[2], (value[0] * value[3] + 127) / 255);
        }
}

TEST(StreamImages, PremultipliesBitmapsInPlace) {
    auto bitmap = platform::BitmapHandle::create(256, 256);
    const auto layout = bitmap.layout();
    ASSERT_EQ(layout.bitsPerPixel, 32);
    for (std::size_t alpha = 0; alpha < 256; ++alpha)
        for (std::size_t value = 0; value < 256; ++value) {
            std::uint8_t* pixel = layout.bits + layout.stride * alpha + value * 4;
            pixel[0] = pixel[1] = pixel[2] = static_cast<std::uint8_t>(value);
            pixel[3] = static_cast<std::uint8_t>(alpha);
        }
    ASSERT_TRUE(premultiplyBitmap(bitmap));
    for (std::size_t alpha = 0; alpha < 256; ++alpha)
        for (std::size_t value = 0; value < 256; ++value) {
            const std::uint8_t* pixel = layout.bits + layout.stride * alpha + value * 4;
            // The exact quotient, rounded down: the constant is a little above 1 / 255.
            EXPECT_EQ(pixel[0], value * alpha / 255) << value << " " << alpha;
            EXPECT_EQ(pixel[2], pixel[0]);
            EXPECT_EQ(pixel[3], alpha);
        }
    auto opaque = platform::BitmapHandle::create(3, 3, 24);
    opaque.layout().bits[0] = 9;
    platform::BitmapHandle none;
    EXPECT_FALSE(premultiplyBitmap(opaque));
    EXPECT_FALSE(premultiplyBitmap(none));
    EXPECT_EQ(opaque.layout().bits[0], 9);
}

}  // namespace
}  // namespace brushwork
