// Rotation and scaling of tiled images of 2048 x 2048 pixels of four bytes, on one thread
// and on as many as there are processors, beside OpenCV and libvips on one thread each in the same
// run, as far as the build has them. All take as many source pixels a target pixel, from memory
// to memory. libvips makes its target anew each time; its cache of results is off. Prints medians,
// millions of target pixels a second and ratios.
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
#ifdef BRUSHWORK_WITH_VIPS
#include <vips/vips.h>
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

struct Peer {
    const char* name;
    std::size_t job;
};

#ifdef BRUSHWORK_WITH_OPENCV
void addOpenCv(const Task& task, std::vector<std::uint8_t>& pixels, std::int32_t size,
               const std::vector<TriangleVertex>& corners, bench::Rounds& rounds,
               std::vector<Peer>& peers) {
    cv::setNumThreads(1);
    const cv::Mat from(side, side, CV_8UC4, pixels.data());
    const cv::Mat to(size, size, CV_8UC4);
    const int mode = task.filter == FilterBicubic ? cv::INTER_CUBIC : cv::INTER_LINEAR;
    const cv::Point2f targets[3] = {{0, 0}, {float(size), 0}, {float(size), float(size)}};
    cv::Point2f sources[3];
    for (std::size_t k = 0; k < 3; ++k)
        sources[k] = {static_cast<float>(corners[k].u), static_cast<float>(corners[k].v)};
    const cv::Mat map = cv::getAffineTransform(targets, sources);
    peers.push_back({"OpenCV", rounds.add("OpenCV", [=] {
                         cv::warpAffine(from, to, map, to.size(), mode | cv::WARP_INVERSE_MAP);
                     })});
}
#endif

#ifdef BRUSHWORK_WITH_VIPS
// Opaque to libvips: the fourth channel is told to be premultiplied, as ours is.
void addVips(const Task& task, std::vector<std::uint8_t>& pixels, std::int32_t size,
             bench::Rounds& rounds, std::vector<Peer>& peers) {
    const double turn = task.degrees * 3.14159265358979 / 180.0;
    const double along = task.scale * std::cos(turn);
    const double across = task.scale * std::sin(turn);
    const double middle = size / 2.0;
    const double shiftX = middle - (along - across) * (side / 2.0);
    const double shiftY = middle - (across + along) * (side / 2.0);
    peers.push_back({"libvips", rounds.add("libvips", [=, &pixels] {
                         VipsImage* const in = vips_image_new_from_memory(
                             pixels.data(), pixels.size(), side, side, 4, VIPS_FORMAT_UCHAR);
                         VipsInterpolate* const filter = vips_interpolate_new(
                             task.filter == FilterBicubic ? "bicubic" : "bilinear");
                         VipsArrayInt* const area = vips_array_int_newv(4, 0, 0, size, size);
                         VipsImage* out = nullptr;
                         require(vips_affine(in, &out, along, -across, across, along, "interpolate",
                                             filter, "oarea", area, "odx", shiftX, "ody", shiftY,
                                             "premultiplied", TRUE, nullptr) == 0);
                         std::size_t bytes = 0;
                         void* const memory = vips_image_write_to_memory(out, &bytes);
                         require(memory && bytes == std::size_t(size) * std::size_t(size) * 4);
                         g_free(memory);
                         g_object_unref(out);
                         vips_area_unref(VIPS_AREA(area));
                         g_object_unref(filter);
                         g_object_unref(in);
                     })});
}
#endif

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
    add("sse2", VectorLevel::Sse2, true);
    const std::size_t ours = add("avx2", VectorLevel::Avx2, true);
    add("avx2, threads", VectorLevel::Avx2, false);
    std::vector<Peer> peers;
#ifdef BRUSHWORK_WITH_OPENCV
    addOpenCv(task, pixels, size, corners, rounds, peers);
#endif
#ifdef BRUSHWORK_WITH_VIPS
    addVips(task, pixels, size, rounds, peers);
#endif
    rounds.run(5, 15);
    std::printf("%s\n", task.name);
    for (const bench::Job& job : rounds.jobs())
        std::printf("  %-16s %9.3f ms %8.1f Mpx/s\n", job.name.c_str(), job.median() * 1e3,
                    double(size) * size / job.median() / 1e6);
    for (const Peer& peer : peers)
        std::printf("  ratio to %s %.2f\n", peer.name,
                    rounds.median(peer.job) / rounds.median(ours));
}

}  // namespace

int main(int, char** argv) {
#ifdef BRUSHWORK_WITH_VIPS
    require(VIPS_INIT(argv[0]) == 0);
    vips_concurrency_set(1);
    vips_cache_set_max(0);
#else
    static_cast<void>(argv);
#endif
    std::vector<std::uint8_t> pixels = picture();
    const Ref<Image> source = znTiledImage::makeImage(4);
    require(source->setRect({0, 0, side, side}));
    require(writeRect(*source, {0, 0, side, side}, pixels.data(), std::size_t{side} * 4));
    measure({"bicubic, turned by 30 degrees", FilterBicubic, 30, 1.0}, pixels, *source);
    measure({"bicubic, scaled to 0.37", FilterBicubic, 0, 0.37}, pixels, *source);
    measure({"bilinear, turned by 30 degrees", FilterBilinear, 30, 1.0}, pixels, *source);
    return 0;
}
