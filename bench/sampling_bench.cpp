// Box downsampling, scaling, rotation and perspective warp of 2048 x 2048 pixels of four bytes, one
// thread, beside OpenCV in the same run if the build has it. Prints medians, millions of written
// pixels a second and ratios.
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "foundation/services/vector_level.h"
#include "image/work/box_downsample.h"
#include "image/work/corner_warp_solver.h"
#include "image/work/perspective_warp_solver.h"
#include "image/work/quarter_turns.h"
#include "image/work/sampling_tables.h"
#include "image/work/tone_kernels.h"
#include "image/work/warp_loops.h"

#ifdef BRUSHWORK_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace brushwork;

constexpr int side = 2048;
constexpr std::size_t bytes = std::size_t{side} * side * 4;

struct Pictures {
    std::vector<std::uint8_t> source = std::vector<std::uint8_t>(bytes);
    std::vector<std::uint8_t> target = std::vector<std::uint8_t>(bytes);
    SampleSource view;

    Pictures() {
        std::uint32_t state = 1;
        for (std::uint8_t& byte : source) {
            state = state * 1664525u + 1013904223u;
            byte = static_cast<std::uint8_t>(state >> 24);
        }
        view = {source.data(), side, side, side * 4, {}};
    }
};

// One task in our forms and in the peer's; `pixels` are those written.
class Task {
  public:
    Task(std::string name, double pixels) : name_(std::move(name)), pixels_(pixels) {}

    void ours(const std::function<void()>& run, bool withScalar = true) {
        for (const VectorLevel level :
             {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2}) {
            if (level == VectorLevel::Scalar && !withScalar) continue;
            ours_ = rounds_.add(vectorLevelName(level), [level, run] {
                forceVectorLevel(level);
                run();
            });
        }
    }
    void peer(const std::string& name, std::function<void()> run) {
        peer_ = rounds_.add(name, std::move(run));
        hasPeer_ = true;
    }
    void report() {
        rounds_.run(11, 61);
        std::printf("%s\n", name_.c_str());
        for (const bench::Job& job : rounds_.jobs())
            std::printf("  %-22s %8.3f ms %9.1f Mpx/s\n", job.name.c_str(), job.median() * 1e3,
                        pixels_ / job.median() / 1e6);
        if (hasPeer_) std::printf("  ratio %.2f\n", rounds_.median(peer_) / rounds_.median(ours_));
    }

  private:
    std::string name_;
    double pixels_;
    bench::Rounds rounds_;
    std::size_t ours_ = 0;
    std::size_t peer_ = 0;
    bool hasPeer_ = false;
};

void require(bool done) {
    if (!done) std::abort();
}

#ifdef BRUSHWORK_WITH_OPENCV
cv::Mat matOf(std::vector<std::uint8_t>& pixels) {
    return cv::Mat(side, side, CV_8UC4, pixels.data());
}
#endif

void downsample(Pictures& p, int block) {
    const int small = side / block;
    Task task("box downsample 1/" + std::to_string(block), double(small) * small);
    task.ours([&p, block, small] {
        const int shift = block == 2 ? 0 : block == 4 ? 1 : block == 8 ? 2 : 3;
        blockKernels().four[shift](
            {p.source.data(), side * 4, p.target.data(), small * 4, small, small});
    });
#ifdef BRUSHWORK_WITH_OPENCV
    cv::Mat out(small, small, CV_8UC4, p.target.data());
    task.peer("OpenCV, area", [&p, out, block]() mutable {
        cv::resize(matOf(p.source), out, out.size(), 0, 0, cv::INTER_AREA);
    });
#endif
    task.report();
}

void scale(Pictures& p, float factor, SampleMode mode) {
    const int size = SamplingTables::scaledSize(side, factor);
    char name[64];
    std::snprintf(name, sizeof name, "%s scale to %.2f",
                  mode == SampleMode::Bicubic    ? "bicubic"
                  : mode == SampleMode::Bilinear ? "bilinear"
                                                 : "nearest",
                  static_cast<double>(factor));
    std::vector<std::uint8_t> out(static_cast<std::size_t>(size) * static_cast<std::size_t>(size) *
                                  4);
    Task task(name, double(size) * size);
    SamplingTables tables;
    tables.setScale(factor, factor);
    tables.setModes(mode, mode);
    task.ours([&] {
        require(
            tables.read(p.view, 4, {0, 0, size, size}, {out.data(), size, size, size * 4, 0, 0}));
    });
#ifdef BRUSHWORK_WITH_OPENCV
    cv::Mat mat(size, size, CV_8UC4, out.data());
    const int flag = mode == SampleMode::Bicubic    ? cv::INTER_CUBIC
                     : mode == SampleMode::Bilinear ? cv::INTER_LINEAR
                                                    : cv::INTER_NEAREST;
    task.peer("OpenCV", [&] { cv::resize(matOf(p.source), mat, mat.size(), 0, 0, flag); });
#endif
    task.report();
}

constexpr const char* modeNames[3] = {"nearest", "bilinear", "bicubic"};

void warp(Pictures& p, const std::string& what, const QuadSolver& solver,
          const QuadCorners& corners, SampleMode mode, bool affine) {
    Task task(std::string(modeNames[static_cast<int>(mode)]) + " " + what, double(side) * side);
    const WarpTarget target{p.target.data(), side, side, side * 4, 0, 0};
    task.ours([&] { require(warpPixels(solver, p.view, mode, 4, target)); });
#ifdef BRUSHWORK_WITH_OPENCV
    const cv::Point2f from[4] = {{0, 0}, {side, 0}, {side, side}, {0, side}};
    cv::Point2f to[4];
    for (std::size_t k = 0; k < 4; ++k) to[k] = {corners[k].x, corners[k].y};
    const int flags[3] = {cv::INTER_NEAREST, cv::INTER_LINEAR, cv::INTER_CUBIC};
    const int flag = flags[static_cast<int>(mode)];
    cv::Mat out = matOf(p.target);
    const cv::Mat map =
        affine ? cv::getAffineTransform(from, to) : cv::getPerspectiveTransform(from, to);
    task.peer("OpenCV", [&] {
        if (affine)
            cv::warpAffine(matOf(p.source), out, map, out.size(), flag, cv::BORDER_TRANSPARENT);
        else
            cv::warpPerspective(matOf(p.source), out, map, out.size(), flag,
                                cv::BORDER_TRANSPARENT);
    });
#else
    static_cast<void>(corners);
    static_cast<void>(affine);
#endif
    task.report();
}

void turns(Pictures& p) {
    Task task("rotate90", double(side) * side);
    task.ours([&] { require(rotate90(p.source.data(), p.target.data(), side, side, 4)); });
#ifdef BRUSHWORK_WITH_OPENCV
    cv::Mat out = matOf(p.target);
    task.peer("OpenCV, transpose", [&] { cv::transpose(matOf(p.source), out); });
#endif
    task.report();
    Task page("rotate90 of a page, hot", 128.0 * 128);
    page.ours([&] { require(rotate90(p.source.data(), p.target.data(), 128, 128, 4)); });
    page.report();
    Task invert("invert", double(side) * side);
    invert.ours([&] { invertFour(p.target.data(), std::size_t{side} * side); });
    invert.report();
}

QuadCorners rotated(float degrees) {
    const float turn = degrees * 3.14159265f / 180.0f;
    const float middle = side / 2.0f;
    QuadCorners corners;
    const QuadCorners square = {{{0, 0}, {side, 0}, {side, side}, {0, side}}};
    for (std::size_t k = 0; k < 4; ++k) {
        const float x = square[k].x - middle;
        const float y = square[k].y - middle;
        // By sixteenths of a pixel, so that the last corner below makes an exact parallelogram.
        const auto snapped = [](float value) { return std::round(value * 16.0f) / 16.0f; };
        corners[k] = {snapped(middle + x * std::cos(turn) - y * std::sin(turn)),
                      snapped(middle + x * std::sin(turn) + y * std::cos(turn))};
    }
    corners[2] = {corners[1].x + corners[3].x - corners[0].x,
                  corners[1].y + corners[3].y - corners[0].y};
    return corners;
}

}  // namespace

int main(int argc, char** argv) {
#ifdef BRUSHWORK_WITH_OPENCV
    cv::setNumThreads(1);
#endif
    const std::string only = argc > 1 ? argv[1] : "";
    const auto wanted = [&](const char* part) { return only.empty() || only == part; };
    Pictures p;
    if (wanted("box"))
        for (const int block : {2, 4, 8, 16}) downsample(p, block);
    if (wanted("scale"))
        for (const float factor : {0.37f, 0.5f, 1.0f})
            for (const SampleMode mode : {SampleMode::Bilinear, SampleMode::Bicubic})
                scale(p, factor, mode);
    const float s = side;
    const QuadCorners leaning = {{{0.1f * s, 0.05f * s}, {0.95f * s, 0}, {s, s}, {0, 0.9f * s}}};
    if (wanted("warp"))
        for (const SampleMode mode :
             {SampleMode::Nearest, SampleMode::Bilinear, SampleMode::Bicubic}) {
            const QuadCorners turned = rotated(30.0f);
            warp(p, "rotation by 30",
                 PerspectiveWarpSolver(turned, s, s, quadToSquare(turned).value()), turned, mode,
                 true);
            warp(p, "perspective",
                 PerspectiveWarpSolver(leaning, s, s, quadToSquare(leaning).value()), leaning, mode,
                 false);
            warp(p, "corner warp", CornerWarpSolver(leaning, s, s), leaning, mode, false);
        }
    if (wanted("turn")) turns(p);
    forceVectorLevel(VectorLevel::Avx2);
    return 0;
}
