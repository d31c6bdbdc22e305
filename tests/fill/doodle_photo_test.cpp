// The climbing fill on a photograph, against its model.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "fill/naive_climb.h"
#include "platform/imaging.h"
#include "platform/text_codec.h"
#include "support/test_seed.h"

namespace brushwork::test {
namespace {

class PictureSink final : public platform::RowSink {
  public:
    explicit PictureSink(Picture& picture) : picture_(picture) {}
    bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
        for (std::int32_t row = y; row < y + count; ++row)
            for (std::int32_t x = 0; x < picture_.box.nx; ++x, bgra += 4)
                picture_.set(picture_.box.x + x, picture_.box.y + row,
                             std::uint32_t{bgra[2]} | std::uint32_t{bgra[1]} << 8 |
                                 std::uint32_t{bgra[0]} << 16 | std::uint32_t{bgra[3]} << 24);
        return true;
    }

  private:
    Picture& picture_;
};

// With its corner at an odd place, so that its rows cross pages.
Picture photograph() {
    Picture picture(flatTile(-70, 45, 451, 300), 4, 0);
    platform::ImagingStatus status{};
    const auto file = platform::imagingService().openFile(
        platform::fromUtf8(BRUSHWORK_TEST_DATA "/pictures/chelsea.png"), status);
    PictureSink sink(picture);
    EXPECT_TRUE(file && file->width() == 451 && file->height() == 300 &&
                file->readRows(platform::PixelFormat::Argb32, sink) == platform::ImagingStatus::Ok);
    return picture;
}

Picture greenOf(Picture picture) {
    picture.channels = 1;
    for (auto& pixel : picture.pixels) pixel = pixel >> 8 & 0xFF;
    return picture;
}

TEST(DoodlePhoto, FollowsItsModelAndTakesBackWhatIsNoise) {
    const std::uint32_t seed = testSeed();
    SCOPED_TRACE(seed);
    Random random(seed);
    const Picture colored = photograph();
    for (const Picture& picture : {colored, greenOf(colored)})
        for (const int tolerance : {0, 16, 48, 96})
            for (int i = 0; i < 10; ++i)
                climbsAsModel(picture,
                              picture.box.x + static_cast<std::int32_t>(between(random, 0, 450)),
                              picture.box.y + static_cast<std::int32_t>(between(random, 0, 299)),
                              tolerance, false);
    // The cat's iris comes out clean, what lies behind the cat as noise.
    const auto from = [&](std::int32_t x, std::int32_t y, int tolerance, bool force) {
        return climbsAsModel(colored, colored.box.x + x, colored.box.y + y, tolerance, force);
    };
    EXPECT_FALSE(from(152, 99, 48, false));
    EXPECT_TRUE(from(152, 99, 48, true));
    EXPECT_TRUE(from(415, 169, 48, false));
}

}  // namespace
}  // namespace brushwork::test
