// Bitmaps to images and back, and the fall-back to the helper.
#include <random>

#include "bridge/client/bitmap_to_image.h"
#include "bridge/client/image_to_bitmap.h"
#include "client_run.h"

namespace brushwork {
namespace {

using platform::ImagingStatus;
using platform::PixelFormat;
using test::HelperProgram;
using test::picture;
using test::pixelsOf;
using test::shellHelper;
using test::TempFolder;
using test::wide;
using Bytes = std::vector<std::uint8_t>;

Gdiplus::Bitmap openHere(const std::string& path) {
    return Gdiplus::Bitmap::fromFile(platform::fromUtf8(path));
}

// A real picture whose pixels this process can't decode.
class Unlucky final : public platform::Picture {
  public:
    Unlucky(const std::string& path, ImagingStatus answer) : answer_(answer) {
        ImagingStatus status = ImagingStatus::Ok;
        real_ = platform::imagingService().openFile(platform::fromUtf8(path), status);
    }
    std::int32_t width() const override { return real_->width(); }
    std::int32_t height() const override { return real_->height(); }
    float xResolution() const override { return real_->xResolution(); }
    float yResolution() const override { return real_->yResolution(); }
    platform::Guid rawFormat() const override { return real_->rawFormat(); }
    bool isGrey() const override { return real_->isGrey(); }
    ImagingStatus readRows(PixelFormat, platform::RowSink& sink) override {
        // Some of it came before memory ran out.
        const Bytes row(static_cast<std::size_t>(width()) * 4, 0x55);
        EXPECT_TRUE(sink.putRows(0, 1, row.data()));
        return answer_;
    }

  private:
    std::unique_ptr<platform::Picture> real_;
    ImagingStatus answer_;
};

Gdiplus::Bitmap unlucky(const std::string& path, ImagingStatus answer) {
    return Gdiplus::Bitmap::fromPicture(std::make_unique<Unlucky>(path, answer));
}

TEST(BitmapToImage, ComesThroughTheHelperWhereThisProcessCant) {
    TempFolder folder;
    const HelperProgram helper;
    for (const char* name : {"rocket.jpg", "tbbn3p08.png", "cup-rgba-zip.tif", "rgba32abf.bmp",
                             "cup-interlaced.gif", "camera.png", "cup-dpi300x150.jpg"})
        for (const PixelAlpha alpha : {PixelAlpha::Straight, PixelAlpha::Premultiplied}) {
            BitmapToImageOptions options;
            options.alpha = alpha;
            const std::string path = picture(name);
            auto bitmap = openHere(path);
            const auto here = bitmapToImage(&bitmap, wide(path), options);
            ASSERT_TRUE(here.image) << name;
            for (const auto status :
                 {ImagingStatus::OutOfMemory, ImagingStatus::InvalidParameter}) {
                auto failing = unlucky(path, status);
                const auto there = bitmapToImage(&failing, wide(path), options);
                ASSERT_TRUE(there.image) << name;
                EXPECT_TRUE(pixelsOf(*there.image) == pixelsOf(*here.image)) << name;
                EXPECT_EQ(there.format, here.format);
                EXPECT_EQ(there.params.xResolution, here.params.xResolution);
                EXPECT_EQ(there.params.yResolution, here.params.yResolution);
            }
            // A file that doesn't even open, for lack of memory.
            auto unopened = Gdiplus::Bitmap::fromPicture(nullptr, ImagingStatus::OutOfMemory);
            const auto there = bitmapToImage(&unopened, wide(path), options);
            ASSERT_TRUE(there.image) << name;
            EXPECT_TRUE(pixelsOf(*there.image) == pixelsOf(*here.image)) << name;
        }
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(BitmapToImage, FallsBackOnlyWhereItMay) {
    TempFolder folder;
    const std::string started = folder.file("started");
    const HelperProgram helper(shellHelper(folder, "touch '" + started + "'"));
    const std::string path = picture("rocket.jpg");
    const auto fails = [&](ImagingStatus status, const BitmapToImageOptions& options,
                           const std::string& name) {
        auto bitmap = unlucky(path, status);
        EXPECT_FALSE(bitmapToImage(&bitmap, wide(name), options).image);
        return std::filesystem::remove(started);
    };
    BitmapToImageOptions forbidden;
    forbidden.fallback = Fallback::Forbidden;
    EXPECT_TRUE(fails(ImagingStatus::OutOfMemory, {}, path));
    EXPECT_FALSE(fails(ImagingStatus::OutOfMemory, forbidden, path));
    EXPECT_FALSE(fails(ImagingStatus::InvalidParameter, forbidden, path));
    EXPECT_FALSE(fails(ImagingStatus::GenericError, {}, path));
    EXPECT_FALSE(fails(ImagingStatus::UnknownImageFormat, {}, path));
    EXPECT_FALSE(fails(ImagingStatus::OutOfMemory, {}, "")) << "pixels from no file";
    EXPECT_FALSE(bitmapToImage(nullptr, wide(path)).image);
    EXPECT_FALSE(std::filesystem::exists(started));
    // The helper fails as well.
    auto bitmap = unlucky(path, ImagingStatus::OutOfMemory);
    EXPECT_FALSE(bitmapToImage(&bitmap, wide(path)).image);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(BitmapToImage, GreyPicturesKeepTheirTopRowFirst) {
    const std::string path = std::string(BRUSHWORK_TEST_DATA) + "/clipboard/grey.png";
    BitmapToImageOptions options;
    options.grey = GreyDetection::On;
    auto bitmap = openHere(path);
    const auto grey = bitmapToImage(&bitmap, wide(path), options).image;
    ASSERT_TRUE(grey);
    ASSERT_EQ(grey->channels(), 1);
    auto again = openHere(path);
    const auto colour = bitmapToImage(&again, wide(path)).image;
    ASSERT_EQ(colour->channels(), 4);
    for (std::int32_t y = 0; y < 7; ++y)
        for (std::int32_t x = 0; x < 13; ++x) {
            const auto value = static_cast<std::uint8_t>(x * 5 + y * 30);
            EXPECT_EQ(grey->data()[y * 13 + x], value);
            const std::uint8_t* pixel = colour->data() + ((6 - y) * 13 + x) * 4;
            EXPECT_EQ((Bytes(pixel, pixel + 4)), (Bytes{value, value, value, 255}));
        }
    // So that a grey picture comes out upside down from the way back, which turns every image.
    const auto back = imageToBitmap(grey.get(), {StoredAlpha::Straight, StoredOrder::Engine});
    ASSERT_TRUE(back);
    for (std::int32_t y = 0; y < 7; ++y)
        EXPECT_EQ(back->row(y)[4 * 12], grey->data()[(6 - y) * 13 + 12]);
    EXPECT_EQ(back->row(0)[3], grey->data()[6 * 13]) << "alpha gets the value too";
    // A colour picture isn't taken for grey.
    auto rocket = openHere(picture("rocket.jpg"));
    EXPECT_EQ(bitmapToImage(&rocket, {}, options).image->channels(), 4);
}

TEST(ImageToBitmap, KeepsEveryPixelInItsPlace) {
    std::mt19937 random(5);
    const Ref<ilSPMemoryImg> image(new ilSPMemoryImg(9, 5, 4));
    for (std::size_t i = 0; i < image->byteSize(); ++i)
        image->data()[i] = static_cast<std::uint8_t>(random());
    const auto engine = imageToBitmap(image.get(), {StoredAlpha::Straight, StoredOrder::Engine});
    const auto bitmap = imageToBitmap(image.get(), {StoredAlpha::Straight, StoredOrder::Bitmap});
    ASSERT_TRUE(engine && bitmap);
    for (std::int32_t y = 0; y < 5; ++y)
        for (std::int32_t x = 0; x < 9; ++x) {
            const std::uint8_t* stored = image->data() + ((4 - y) * 9 + x) * 4;
            const std::uint8_t* same = bitmap->row(y) + x * 4;
            const std::uint8_t* swapped = engine->row(y) + x * 4;
            EXPECT_EQ(Bytes(same, same + 4), Bytes(stored, stored + 4));
            EXPECT_EQ(Bytes(swapped, swapped + 4),
                      (Bytes{stored[2], stored[1], stored[0], stored[3]}));
        }
    const Ref<ilSPMemoryImg> three(new ilSPMemoryImg(9, 5, 3));
    const Ref<ilSPMemoryImg> none(new ilSPMemoryImg(0, 5, 4));
    EXPECT_FALSE(imageToBitmap(three.get()));
    EXPECT_FALSE(imageToBitmap(none.get()));
    EXPECT_FALSE(imageToBitmap(nullptr));
}

// Every premultiplied pixel that a straight one makes, there and back.
TEST(ImageToBitmap, StraightensWhatWasPremultiplied) {
    auto source = MemoryPicture::make(256, 256);
    for (std::int32_t alpha = 0; alpha < 256; ++alpha)
        for (std::int32_t value = 0; value < 256; ++value) {
            std::uint8_t* pixel = source->row(alpha) + value * 4;
            pixel[0] = pixel[1] = pixel[2] = static_cast<std::uint8_t>(value);
            pixel[3] = static_cast<std::uint8_t>(alpha);
        }
    auto bitmap = Gdiplus::Bitmap::fromPicture(std::move(source));
    BitmapToImageOptions options;
    options.alpha = PixelAlpha::Premultiplied;
    const auto image = bitmapToImage(&bitmap, {}, options).image;
    const auto straight = imageToBitmap(image.get());
    auto second = Gdiplus::Bitmap::fromPicture(imageToBitmap(image.get()));
    for (std::int32_t alpha = 1; alpha < 256; ++alpha)
        for (std::int32_t value = 0; value < 256; ++value) {
            const std::uint8_t* pixel = straight->row(alpha) + value * 4;
            EXPECT_LE(std::abs(pixel[0] - value) * alpha, 255 / 2 + alpha / 2) << alpha;
            EXPECT_EQ(pixel[3], alpha);
        }
    EXPECT_EQ(pixelsOf(*bitmapToImage(&second, {}, options).image), pixelsOf(*image))
        << "a second round loses nothing";
}

}  // namespace
}  // namespace brushwork
