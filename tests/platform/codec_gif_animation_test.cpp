#include "platform/codec_gif_animation.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/codec_test_streams.h"
#include "support/gif_frames.h"

namespace brushwork::platform {
namespace {

using test::VectorTarget;

// Pixels are 0xAArrggbb, rows from the top.
class PixelRows final : public RowSource {
  public:
    PixelRows(std::int32_t width, std::vector<std::uint32_t> pixels)
        : pixels_(std::move(pixels)), width_(static_cast<std::size_t>(width)) {}
    bool getRow(std::int32_t y, std::uint8_t* bgra) override {
        if (fails) return false;
        std::memcpy(bgra, &pixels_[static_cast<std::size_t>(y) * width_], width_ * 4);
        return true;
    }
    bool fails = false;

  private:
    std::vector<std::uint32_t> pixels_;
    std::size_t width_;
};

EncodeRequest requestOf(std::int32_t width, std::int32_t height, RowSource& rows) {
    EncodeRequest request;
    request.width = width;
    request.height = height;
    request.source = &rows;
    return request;
}

std::optional<brushwork::test::GifFile> fileOf(const VectorTarget& target) {
    return brushwork::test::GifFrameReader(
               {reinterpret_cast<const char*>(target.bytes.data()), target.bytes.size()})
        .read();
}

// Pictures of few colours come back exactly, whatever their sizes, with holes and without.
TEST(GifAnimation, PicturesComeBackExactly) {
    std::mt19937 random(20251);
    for (int round = 0; round < 40; ++round) {
        const auto width = static_cast<std::int32_t>(1 + random() % 90);
        const auto height = static_cast<std::int32_t>(1 + random() % 60);
        SCOPED_TRACE(testing::Message() << round << ": " << width << " x " << height);
        const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        VectorTarget target;
        GifAnimation animation(target);
        const auto plays = static_cast<std::uint16_t>(random() % 4);
        ASSERT_EQ(animation.begin({width, height, plays}), ImagingStatus::Ok);
        std::vector<std::vector<std::uint32_t>> wanted;
        std::vector<int> times;
        for (int n = 0; n < 4; ++n) {
            std::vector<std::uint32_t> colours(1 + random() % 200);
            for (std::uint32_t& colour : colours) colour = 0xFF000000 | (random() & 0xFFFFFF);
            if (random() % 2 == 0) colours.front() = 0;
            std::vector<std::uint32_t> pixels(count);
            for (std::uint32_t& pixel : pixels) pixel = colours[random() % colours.size()];
            PixelRows rows(width, pixels);
            times.push_back(static_cast<int>(random() % 65535 + 1));
            ASSERT_EQ(animation.add(requestOf(width, height, rows),
                                    static_cast<std::uint32_t>(times.back())),
                      ImagingStatus::Ok);
            wanted.push_back(pixels);
        }
        ASSERT_EQ(animation.finish(), ImagingStatus::Ok);
        const auto file = fileOf(target);
        ASSERT_TRUE(file);
        EXPECT_EQ(file->width, width);
        EXPECT_EQ(file->height, height);
        EXPECT_EQ(file->repeats, plays == 0 ? 0 : plays == 1 ? -1 : plays - 1);
        ASSERT_EQ(file->frames.size(), 4u);
        for (std::size_t n = 0; n < 4; ++n) {
            EXPECT_EQ(file->frames[n].pixels, wanted[n]);
            EXPECT_EQ(file->frames[n].hundredths, times[n]);
            EXPECT_EQ(file->frames[n].disposal, 2) << "nothing shows through";
        }
    }
}

TEST(GifAnimation, LongTimesAreSharedOut) {
    VectorTarget target;
    GifAnimation animation(target);
    PixelRows rows(1, {0xFF123456});
    ASSERT_EQ(animation.begin({1, 1}), ImagingStatus::Ok);
    ASSERT_EQ(animation.add(requestOf(1, 1, rows), 65535), ImagingStatus::Ok);
    ASSERT_EQ(animation.add(requestOf(1, 1, rows), 0), ImagingStatus::Ok);
    ASSERT_EQ(animation.add(requestOf(1, 1, rows), 200000), ImagingStatus::Ok);
    ASSERT_EQ(animation.finish(), ImagingStatus::Ok);
    const auto file = fileOf(target);
    ASSERT_TRUE(file);
    std::vector<int> times;
    for (const auto& frame : file->frames) times.push_back(frame.hundredths);
    EXPECT_EQ(times, (std::vector<int>{65535, 50000, 50000, 50000, 50000}));
}

TEST(GifAnimation, RefusesWhatMakesNoFile) {
    VectorTarget target;
    PixelRows rows(2, {1, 2, 3, 4});
    {
        GifAnimation animation(target);
        EXPECT_EQ(animation.add(requestOf(2, 2, rows), 1), ImagingStatus::WrongState);
        EXPECT_EQ(animation.finish(), ImagingStatus::WrongState);
        EXPECT_EQ(animation.begin({0, 5}), ImagingStatus::InvalidParameter);
        EXPECT_EQ(animation.begin({65536, 5}), ImagingStatus::ValueOverflow);
        EXPECT_EQ(animation.begin({2, 2}), ImagingStatus::Ok);
        EXPECT_EQ(animation.begin({2, 2}), ImagingStatus::WrongState);
        EXPECT_EQ(animation.add(requestOf(2, 1, rows), 1), ImagingStatus::InvalidParameter);
        EXPECT_EQ(animation.finish(), ImagingStatus::WrongState) << "no picture";
        EXPECT_EQ(animation.add(requestOf(2, 2, rows), 1), ImagingStatus::Ok);
        rows.fails = true;
        EXPECT_EQ(animation.add(requestOf(2, 2, rows), 1), ImagingStatus::GenericError);
        rows.fails = false;
        EXPECT_EQ(animation.add(requestOf(2, 2, rows), 1), ImagingStatus::WrongState);
        EXPECT_EQ(animation.finish(), ImagingStatus::WrongState);
    }
    // A disk that is full, noticed at the latest at the end.
    for (const std::uint64_t space : {0u, 10u, 40u}) {
        VectorTarget full;
        full.failFrom = space;
        GifAnimation animation(full);
        bool done = animation.begin({2, 2}) == ImagingStatus::Ok;
        done = done && animation.add(requestOf(2, 2, rows), 1) == ImagingStatus::Ok;
        EXPECT_FALSE(done && animation.finish() == ImagingStatus::Ok) << space;
    }
}

}  // namespace
}  // namespace brushwork::platform
