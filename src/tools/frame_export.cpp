#include "tools/frame_export.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>

#include "bridge/pixel_order.h"
#include "brushwork/i_string.h"
#include "platform/byte_stream.h"
#include "platform/codec_gif_animation.h"
#include "tools/canvas_picture.h"

namespace brushwork::tools {
namespace {

constexpr std::size_t numberDigits = 4;

PictureFault nothingToShow() {
    return {ExitFailed, "the animation has no frames"};
}

// A canvas' picture as rows from the top of a larger screen, in its lower left corner.
class ScreenRows final : public platform::RowSource {
  public:
    // The picture's pixels are changed into what encoders want.
    ScreenRows(CanvasPicture& picture, std::int32_t width, std::int32_t height)
        : picture_(picture),
          screenBytes_(static_cast<std::size_t>(width) * 4),
          rowBytes_(static_cast<std::size_t>(picture.width) * 4),
          height_(height) {
        unpremultiply(picture.pixels.data(), picture.pixels.size() / 4);
        swapRedAndBlue(picture.pixels.data(), picture.pixels.size() / 4);
    }

    bool getRow(std::int32_t y, std::uint8_t* bgra) override {
        const std::int32_t row = height_ - 1 - y;
        std::memset(bgra, 0, screenBytes_);
        if (row < picture_.height)
            std::memcpy(bgra, &picture_.pixels[static_cast<std::size_t>(row) * rowBytes_],
                        rowBytes_);
        return true;
    }

  private:
    const CanvasPicture& picture_;
    std::size_t screenBytes_, rowBytes_;
    std::int32_t height_;
};

platform::GifAnimation::Screen screenOf(const std::vector<FrameRun>& runs,
                                        const PaintManager& paint) {
    platform::GifAnimation::Screen screen;
    for (const FrameRun& run : runs) {
        const ilTile box = paint.canvasBounds(run.canvas);
        screen.width = std::max(screen.width, box.nx);
        screen.height = std::max(screen.height, box.ny);
    }
    return screen;
}

std::uint32_t hundredthsUntil(std::uint32_t numbers, double framesPerSecond) {
    return static_cast<std::uint32_t>(std::lround(numbers * 100.0 / framesPerSecond));
}

PictureFault gifFault(const std::string& path, platform::ImagingStatus status) {
    if (status == platform::ImagingStatus::OutOfMemory)
        return {ExitLimit, path + ": no memory for the GIF"};
    if (status == platform::ImagingStatus::ValueOverflow)
        return {ExitLimit, path + ": a GIF has at most 65535 pixels a side"};
    return {ExitInputOutput, path + ": can't be written as GIF"};
}

}  // namespace

std::vector<FrameRun> frameRuns(const AnimationManager& animation) {
    std::vector<FrameRun> runs;
    const auto begin = [&](std::uint32_t number, std::int32_t canvas) {
        if (!runs.empty()) runs.back().last = number - 1;
        runs.push_back({number, number, canvas});
    };
    for (std::size_t n = 0; n < animation.frameCount(); ++n) {
        const Ref<AnimFrame> frame = animation.frameAt(n);
        if (runs.empty() && frame->frameNumber > 1) begin(1, animation.currentCanvas());
        begin(frame->frameNumber, frame->canvasIndex());
    }
    if (!runs.empty()) runs.back().last = animation.lastFrame();
    return runs;
}

std::optional<PictureFault> exportFramePngs(const AnimationManager& animation, PaintManager& paint,
                                            const std::string& prefix, FrameFiles files) {
    const std::vector<FrameRun> runs = frameRuns(animation);
    if (runs.empty()) return nothingToShow();
    for (const FrameRun& run : runs) {
        const std::string path = numberedPngPath(prefix, run.first, numberDigits);
        if (auto fault = saveCanvasPicture(paint, run.canvas, path)) return fault;
        if (files == FrameFiles::EachRun) continue;
        for (std::uint32_t number = run.first + 1; number <= run.last; ++number) {
            const std::string held = numberedPngPath(prefix, number, numberDigits);
            std::error_code error;
            std::filesystem::copy_file(path, held,
                                       std::filesystem::copy_options::overwrite_existing, error);
            if (error) return PictureFault{ExitInputOutput, held + ": can't be written"};
        }
    }
    return std::nullopt;
}

std::optional<PictureFault> exportFrameGif(const AnimationManager& animation, PaintManager& paint,
                                           const std::string& path, const FrameGif& settings) {
    using platform::ImagingStatus;
    const std::vector<FrameRun> runs = frameRuns(animation);
    if (runs.empty()) return nothingToShow();
    if (!(settings.framesPerSecond >= 0.01 && settings.framesPerSecond <= 100.0))
        return PictureFault{ExitUsage, "frames per second lie between 0.01 and 100"};
    const auto target =
        platform::createFileTarget(znString::IString(std::string_view(path)).view());
    if (!target) return PictureFault{ExitInputOutput, path + ": can't be written"};
    platform::GifAnimation gif(*target);
    platform::GifAnimation::Screen screen = screenOf(runs, paint);
    screen.plays = settings.plays;
    ImagingStatus status = gif.begin(screen);
    for (const FrameRun& run : runs) {
        if (status != ImagingStatus::Ok) break;
        CanvasPicture picture;
        if (auto fault = readCanvasPicture(paint, run.canvas, picture)) return fault;
        ScreenRows rows(picture, screen.width, screen.height);
        platform::EncodeRequest request;
        request.width = screen.width;
        request.height = screen.height;
        request.source = &rows;
        const std::uint32_t begin = hundredthsUntil(run.first - 1, settings.framesPerSecond);
        status = gif.add(request, hundredthsUntil(run.last, settings.framesPerSecond) - begin);
    }
    if (status == ImagingStatus::Ok) status = gif.finish();
    if (status != ImagingStatus::Ok) return gifFault(path, status);
    if (!target->commit()) return gifFault(path, ImagingStatus::GenericError);
    return std::nullopt;
}

}  // namespace brushwork::tools
