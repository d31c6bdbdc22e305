// The fast blur on 2048 x 2048 pixels of four bytes, one thread, beside OpenCV in the same run if
// the build has it. Prints medians, throughput and ratios.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench_clock.h"
#include "foundation/services/vector_level.h"
#include "image/filter/fast_blur.h"

#ifdef BRUSHWORK_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace brushwork;

constexpr int side = 2048;
constexpr std::size_t bytes = std::size_t{side} * side * 4;

std::vector<std::uint8_t> noise() {
    std::vector<std::uint8_t> pixels(bytes);
    std::uint32_t state = 1;
    for (std::uint8_t& byte : pixels) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return pixels;
}

void measure(int radius) {
    std::vector<std::uint8_t> source = noise();
    std::vector<std::uint8_t> target(bytes);
    const int size = 2 * radius + 1;
    bench::Rounds rounds;
    for (const VectorLevel level : {VectorLevel::Sse2, VectorLevel::Avx2}) {
        rounds.add(vectorLevelName(level), [&, level] {
            forceVectorLevel(level);
            if (!fastBlur4(source.data(), target.data(), side, side, size)) std::abort();
        });
    }
#ifdef BRUSHWORK_WITH_OPENCV
    const cv::Mat in(side, side, CV_8UC4, source.data());
    cv::Mat a;
    cv::Mat b;
    const int box = 2 * ((radius + 1) / 3) + 1;
    const std::size_t boxes = rounds.add("OpenCV, three boxes", [&] {
        cv::blur(in, a, cv::Size(box, box));
        cv::blur(a, b, cv::Size(box, box));
        cv::blur(b, a, cv::Size(box, box));
    });
    const std::size_t gaussian = rounds.add(
        "OpenCV, Gaussian", [&] { cv::GaussianBlur(in, a, cv::Size(size, size), radius / 2.0); });
#endif
    rounds.run(radius < 50 ? 15 : 10, 40);

    std::printf("radius %d\n", radius);
    for (const bench::Job& job : rounds.jobs()) {
        const double time = job.median();
        std::printf("  %-20s %8.2f ms %8.1f Mpx/s", job.name.c_str(), time * 1e3,
                    side * side / time / 1e6);
#ifdef BRUSHWORK_WITH_OPENCV
        std::printf("   x %.2f of three boxes, x %.1f of the Gaussian", rounds.median(boxes) / time,
                    rounds.median(gaussian) / time);
#endif
        std::printf("\n");
    }
}

}  // namespace

int main() {
#ifdef BRUSHWORK_WITH_OPENCV
    cv::setNumThreads(1);
#endif
    for (const int radius : {5, 20, 100}) measure(radius);
    return 0;
}
