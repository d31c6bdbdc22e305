#include "tools/frame_export.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "bridge/client_run.h"
#include "support/gif_frames.h"
#include "support/scratch_directory.h"
#include "tools/time_lapse.h"

namespace brushwork::tools {
namespace {

// Canvases of one colour each, so that a picture tells which it is of.
class FrameExport : public testing::Test {
  protected:
    std::int32_t canvasOf(std::int32_t width, std::int32_t height, float red, float alpha = 1.0f) {
        const std::int32_t canvas = paint_.newCanvas(width, height);
        paint_.newLayer();
        paint_.fillLayer({red, 0.0f, 1.0f, alpha});
        return canvas;
    }
    [[nodiscard]] std::string path(const char* name) const { return (folder_ / name).string(); }
    // The pixel in the lower left corner, premultiplied, as 0xAABBGGRR; 0 for no picture.
    static std::uint32_t cornerOf(const std::string& file, ilTile* box = nullptr) {
        ImageRef picture;
        if (readPicture(file, PictureUse::Colors, picture)) return 0;
        if (box) *box = picture.bounds();
        std::uint32_t pixel = 0;
        picture.read(flatTile(0, 0, 1, 1), &pixel);
        return pixel;
    }

    test::HelperProgram helper_;
    ScratchDirectory folder_;
    PaintManager paint_;
    AnimationManager animation_{paint_};
};

constexpr std::uint32_t red255 = 0xFFFF00FF, red0 = 0xFFFF0000, red51 = 0xFFFF0033;

TEST_F(FrameExport, HoldsLastAsLongAsInTheTimeline) {
    EXPECT_TRUE(exportFramePngs(animation_, paint_, path("none")));
    EXPECT_TRUE(exportFrameGif(animation_, paint_, path("none.gif")));
    EXPECT_EQ(folder_.entryCount(), 0u);
    animation_.addFrame(3, canvasOf(20, 10, 1.0f));
    animation_.addFrame(4, canvasOf(12, 16, 0.0f));
    animation_.addFrame(9, canvasOf(20, 10, 0.2f));
    animation_.deleteFrame(9);  // the second now holds up to 8
    const std::uint32_t shown = animation_.currentFrame();
    const std::vector<FrameRun> runs = frameRuns(animation_);
    ASSERT_EQ(runs.size(), 3u);
    EXPECT_EQ(runs[0].last, 2u);
    EXPECT_EQ(runs[0].canvas, runs[1].canvas) << "the base's, in front of the first frame";
    EXPECT_EQ(runs[2].last, 8u);

    ASSERT_FALSE(exportFramePngs(animation_, paint_, path("deep/walk-")));
    for (std::uint32_t number = 1; number <= 8; ++number) {
        ilTile box;
        const std::string file = path("deep/walk-000") + std::to_string(number) + ".png";
        EXPECT_EQ(cornerOf(file, &box), number < 4 ? red255 : red0) << file;
        EXPECT_EQ(box.ny, number < 4 ? 10 : 16);
    }
    EXPECT_FALSE(std::filesystem::exists(path("deep/walk-0009.png")));
    ASSERT_FALSE(exportFramePngs(animation_, paint_, path("key-"), FrameFiles::EachRun));
    EXPECT_EQ(folder_.entryCount(), 4u) << "a file a run";

    ASSERT_FALSE(exportFrameGif(animation_, paint_, path("walk.gif"), {24.0, 3}));
    const auto gif = brushwork::test::GifFrameReader(folder_.get("walk.gif")).read();
    ASSERT_TRUE(gif);
    EXPECT_EQ(gif->width, 20);
    EXPECT_EQ(gif->height, 16);
    EXPECT_EQ(gif->repeats, 2);
    ASSERT_EQ(gif->frames.size(), 3u);
    // 8 numbers at 24 a second: 33.3 hundredths, however they are shared out.
    EXPECT_EQ(gif->frames[0].hundredths, 8);
    EXPECT_EQ(gif->frames[1].hundredths, 5);
    EXPECT_EQ(gif->frames[2].hundredths, 20);
    const auto pixel = [&](std::size_t frame, std::size_t x, std::size_t y) {
        return gif->frames[frame].pixels[y * 20 + x];
    };
    EXPECT_EQ(pixel(1, 19, 15), 0xFFFF00FF);
    EXPECT_EQ(pixel(1, 0, 5), 0u) << "above the smaller canvas";
    EXPECT_EQ(pixel(2, 11, 0), 0xFF0000FF);
    EXPECT_EQ(pixel(2, 12, 0), 0u);
    EXPECT_EQ(animation_.currentFrame(), shown);
}

TEST_F(FrameExport, FaultsNameTheFile) {
    animation_.addFrame(1, canvasOf(8, 8, 1.0f));
    folder_.put("file", "x");
    EXPECT_EQ(exportFramePngs(animation_, paint_, path("file/a-"))->code, ExitInputOutput);
    EXPECT_EQ(exportFrameGif(animation_, paint_, path("file/a.gif"))->code, ExitInputOutput);
    for (const double rate : {0.0, -1.0, 101.0, std::nan("")})
        EXPECT_EQ(exportFrameGif(animation_, paint_, path("a.gif"), {rate})->code, ExitUsage);
    EXPECT_EQ(folder_.entryCount(), 1u);
}

TEST_F(FrameExport, TimeLapseTakesEverySoManyOperations) {
    TimeLapse lapse(paint_, path("step-"), 2);
    EXPECT_FALSE(lapse.operationRun());
    EXPECT_FALSE(lapse.operationRun());
    EXPECT_EQ(lapse.pictures(), 0u) << "no canvas yet";
    canvasOf(6, 6, 1.0f);
    EXPECT_FALSE(lapse.operationRun());
    EXPECT_FALSE(lapse.operationRun());
    paint_.fillLayer({0.0f, 0.0f, 1.0f, 1.0f});
    EXPECT_FALSE(lapse.operationRun());
    EXPECT_FALSE(lapse.operationRun());
    EXPECT_FALSE(lapse.finish()) << "nothing is new";
    EXPECT_EQ(lapse.pictures(), 2u);
    paint_.fillLayer({0.2f, 0.0f, 1.0f, 1.0f});
    EXPECT_FALSE(lapse.operationRun());
    EXPECT_FALSE(lapse.finish());
    EXPECT_EQ(folder_.entryCount(), 3u);
    EXPECT_EQ(cornerOf(path("step-000001.png")), red255);
    EXPECT_EQ(cornerOf(path("step-000002.png")), red0);
    EXPECT_EQ(cornerOf(path("step-000003.png")), red51);
}

}  // namespace
}  // namespace brushwork::tools
