// SmartImageFloodFillAlg on 4096 x 4096 pixels of four bytes, one thread, soft edges included,
// beside OpenCV's floodFill into a mask (three bytes a pixel, hard edges) in the same run if the
// build has it. Prints medians, throughput of filled pixels and ratios.
//
// Ours makes its mask new each time and drops it. OpenCV's mask has to be clear at the start: it is
// cleared outside the time that counts.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "bench_clock.h"
#include "brushwork/ref.h"
#include "fill/smart_image_flood_fill_alg.h"
#include "image/cache/smart_image_cache.h"
#include "image/memory/memory_manager.h"
#include "image/smart/il_smart_image.h"

#ifdef BRUSHWORK_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using namespace brushwork;

constexpr std::int32_t side = 4096;
constexpr std::size_t pixelCount = std::size_t{side} * side;
constexpr ilTile box = flatTile(0, 0, side, side);
constexpr std::uint32_t paper = 0xFFFFFFFF;
constexpr std::uint32_t ink = 0xFF000000;

using Words = std::vector<std::uint32_t>;

Words flat() {
    return Words(pixelCount, paper);
}

// Soft lines: ink with a grey pixel on either side.
Words drawing() {
    Words words = flat();
    std::mt19937 random(3);
    const auto part = [&] { return static_cast<double>(random() % side); };
    for (int line = 0; line < 60; ++line) {
        const double x0 = part();
        const double y0 = part();
        const double dx = part() - x0;
        const double dy = part() - y0;
        for (int i = 0; i < 3 * side; ++i) {
            const double t = i / (3.0 * side);
            const auto x = static_cast<std::int32_t>(x0 + dx * t);
            const auto y = static_cast<std::int32_t>(y0 + dy * t);
            for (std::int32_t ry = -2; ry <= 2; ++ry)
                for (std::int32_t rx = -2; rx <= 2; ++rx) {
                    if (x + rx < 0 || y + ry < 0 || x + rx >= side || y + ry >= side) continue;
                    auto& word = words[static_cast<std::size_t>(y + ry) * side +
                                       static_cast<std::size_t>(x + rx)];
                    const std::uint32_t value =
                        rx * rx <= 1 && ry * ry <= 1 ? ink : std::uint32_t{0xFFB0B0B0};
                    if (value < word) word = value;
                }
        }
    }
    return words;
}

// One corridor 3 pixels wide, to and fro over the whole picture, with walls of 1 pixel.
Words corridor(bool upright) {
    Words words = flat();
    for (std::int32_t line = 3; line < side; line += 4) {
        const bool doorAtEnd = line / 4 % 2 == 0;
        for (std::int32_t i = 0; i < side; ++i) {
            const bool door = doorAtEnd ? i >= side - 3 : i < 3;
            const auto along = static_cast<std::size_t>(i);
            const auto across = static_cast<std::size_t>(line);
            if (!door) words[upright ? along * side + across : across * side + along] = ink;
        }
    }
    return words;
}

Words speckle() {
    Words words = flat();
    std::mt19937 random(5);
    for (std::uint32_t& word : words)
        if (random() % 4 == 0) word = ink;
    words[0] = paper;
    return words;
}

void fillOurs(ilSmartImage& image, SmartImageFloodFillAlg::Method method, bool smooth,
              std::uint64_t* filled = nullptr) {
    const Ref<ilSmartImage> mask(new ilSmartImage(ilPixel(TypeUChar, 1)));
    SmartImageFloodFillAlg flood;
    flood.setMethod(method);
    flood.setSmoothEdges(smooth);
    flood.setImages(image, *mask);
    flood.setSeed(0, 0);
    flood.run();
    if (!filled) return;
    std::vector<std::uint8_t> bytes(pixelCount);
    mask->readRegion(box, bytes.data(), box);
    *filled = 0;
    for (const std::uint8_t byte : bytes) *filled += byte == 255 ? 1U : 0U;
}

void measure(const char* name, const Words& words, bool settled) {
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    image->writeRegion(box, words.data(), box);
    while (settled && SmartImageCache::instance().idleStep()) {
    }
    std::uint64_t filled = 0;
    fillOurs(*image, SmartImageFloodFillAlg::Method::Rows, true, &filled);

    bench::Rounds rounds;
    using Method = SmartImageFloodFillAlg::Method;
    rounds.add("rows, soft edges", [&] { fillOurs(*image, Method::Rows, true); });
    rounds.add("rows, hard edges", [&] { fillOurs(*image, Method::Rows, false); });
    rounds.add("waves, soft edges", [&] { fillOurs(*image, Method::Waves, true); });
#ifdef BRUSHWORK_WITH_OPENCV
    cv::Mat picture;
    cv::cvtColor(cv::Mat(side, side, CV_8UC4, const_cast<std::uint32_t*>(words.data())), picture,
                 cv::COLOR_BGRA2BGR);
    cv::Mat mask(side + 2, side + 2, CV_8UC1);
    const std::size_t clear = rounds.add("OpenCV, clearing", [&] { mask.setTo(0); });
    const std::size_t peer = rounds.add("OpenCV and clearing", [&] {
        mask.setTo(0);
        const cv::Scalar limit(31, 31, 31);
        cv::floodFill(picture, mask, cv::Point(0, 0), cv::Scalar(), nullptr, limit, limit,
                      4 | cv::FLOODFILL_FIXED_RANGE | cv::FLOODFILL_MASK_ONLY | (255 << 8));
    });
#endif
    rounds.run(10, 20);

    const double megapixels = static_cast<double>(filled) / 1e6;
    std::printf("%s, %.2f Mpx filled\n", name, megapixels);
    for (const bench::Job& job : rounds.jobs()) {
        const double time = job.median();
        std::printf("  %-20s %8.2f ms %8.1f Mpx/s", job.name.c_str(), time * 1e3,
                    megapixels / time);
#ifdef BRUSHWORK_WITH_OPENCV
        std::printf("   x %.2f of OpenCV", (rounds.median(peer) - rounds.median(clear)) / time);
#endif
        std::printf("\n");
    }
}

}  // namespace

int main() {
#ifdef BRUSHWORK_WITH_OPENCV
    cv::setNumThreads(1);
#endif
    BworkMemory::instance().enable(true);
    measure("flat, pages in memory", flat(), false);
    measure("flat, solid pages", flat(), true);
    measure("line drawing", drawing(), true);
    measure("corridor 3 px high", corridor(false), true);
    measure("corridor 3 px wide", corridor(true), true);
    measure("speckle, a quarter walls", speckle(), true);
    return 0;
}
