// Bicubic rotation and scaling of tiled images of 2048 x 2048 pixels of four bytes, on one thread
// and on as many as there are processors, beside OpenCV on one thread in the same run if the build
// has it. Prints medians, millions of target pixels a second and ratios.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "bench_clock.h"
#include "foundation/services/vector_level.h"
#include "tiled/filter_factory.h"
#include "tiled/resample_run.h"
#include "tiled/tile_regions.h"

#ifdef BRUSHWORK_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace brushwork;
using znTiledImage::Image;
using znTiledImage::PixelRect;

constexpr std::int32_t side = 2048;

void require(bool done) {
    if (!done) std::abort();
}

// Noise that was softened a little, as a photograph has it.
std::vector<std::uint8_t> picture() {
    std::vector<std::uint8_t> pixels(std::size_t{side} * side * 4);
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        state = state * 1664525u + 1013904223u;
        const std::uint32_t noise = state >> 24;
        const std::uint32_t before = i < 4 ? 128u : pixels[i - 4];
        pixels[i] = static_cast<std::uint8_t>((before * 3 + noise) / 4);
    }
    return pixels;
}

struct Task {
    const char* name;
    std::int32_t filter;
    double degrees;
    double scale;
};

void measure(const Task& task, std::vector<std::uint8_t>& pixels, const Image& source) {
    const auto size = static_cast<std::int32_t>(std::lround(side * task.scale));
    const PixelRect rect{0, 0, size, size};
    const Ref<Image> target = znTiledImage::makeImage(4);
    require(target->setRect(rect));
    const auto reader = makePixelReader(source, {0, 0, side, side});
    const Ref<ResampleFilter> filter = makeFilter(task.filter, EdgeOutside);
    require(filter->begin(reader.get(), 0, 0, side - 1, side - 1));
    // Every target pixel is drawn; those that lie off the source read nothing there.
    const double turn = task.degrees * 3.14159265358979 / 180.0;
    std::vector<TriangleVertex> corners;
    for (const auto& [x, y] : {std::pair{0, 0}, {size, 0}, {size, size}, {0, size}}) {
        const double dx = (x - size / 2.0) / task.scale;
        const double dy = (y - size / 2.0) / task.scale;
        corners.push_back({double(x), double(y),
                           dx * std::cos(turn) + dy * std::sin(turn) + side / 2.0,
                           dy * std::cos(turn) - dx * std::sin(turn) + side / 2.0, 0});
    }
    const std::uint32_t indexes[] = {0, 1, 2, 0, 2, 3};
    bench::Rounds rounds;
    const auto add = [&](const std::string& name, VectorLevel level, bool single) {
        return rounds.add(name, [&, level, single] {
            forceVectorLevel(level);
            ResampleOptions options;
            options.singleThread = single;
            require(resampleTriangles(*target, {corners, indexes}, *filter, options));
        });
    };
    add("scalar", VectorLevel::Scalar, true);
    const std::size_t ours = add("avx2", VectorLevel::Avx2, true);
    add("avx2, threads", VectorLevel::Avx2, false);
#ifdef BRUSHWORK_WITH_OPENCV
    cv::setNumThreads(1);
    const cv::Mat from(side, side, CV_8UC4, pixels.data());
    cv::Mat to(size, size, CV_8UC4);
    const int mode = task.filter == FilterBicubic ? cv::INTER_CUBIC : cv::INTER_LINEAR;
    const cv::Point2f targets[3] = {{0, 0}, {float(size), 0}, {float(size), float(size)}};
    cv::Point2f sources[3];
    for (std::size_t k = 0; k < 3; ++k)
        sources[k] = {static_cast<float>(corners[k].u), static_cast<float>(corners[k].v)};
    const cv::Mat map = cv::getAffineTransform(targets, sources);
    const std::size_t peer = rounds.add(
        "OpenCV", [&] { cv::warpAffine(from, to, map, to.size(), mode | cv::WARP_INVERSE_MAP); });
#endif
    rounds.run(5, 15);
    std::printf("%s\n", task.name);
    for (const bench::Job& job : rounds.jobs())
        std::printf("  %-16s %9.3f ms %8.1f Mpx/s\n", job.name.c_str(), job.median() * 1e3,
                    double(size) * size / job.median() / 1e6);
#ifdef BRUSHWORK_WITH_OPENCV
    std::printf("  ratio %.2f\n", rounds.median(peer) / rounds.median(ours));
#else
    static_cast<void>(pixels);
    static_cast<void>(ours);
#endif
}

}  // namespace

int main() {
    std::vector<std::uint8_t> pixels = picture();
    const Ref<Image> source = znTiledImage::makeImage(4);
    require(source->setRect({0, 0, side, side}));
    require(writeRect(*source, {0, 0, side, side}, pixels.data(), std::size_t{side} * 4));
    measure({"bicubic, turned by 30 degrees", FilterBicubic, 30, 1.0}, pixels, *source);
    measure({"bicubic, scaled to 0.37", FilterBicubic, 0, 0.37}, pixels, *source);
    return 0;
}
