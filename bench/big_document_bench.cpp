// A document larger than memory: 60 layers of 8192 by 8192, half covered with strokes of soft discs
// along curves, under a page cache of 256 MiB. Written, read again and compared with what painting
// the layer anew, without any engine, gives. Prints time, bytes in the swap file and the most
// memory that the process held.
//
//     big_document_bench [on|off [layers]]     memory manager on (first) or off
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "brushwork/ref.h"
#include "image/cache/smart_image_cache.h"
#include "image/memory/memory_manager.h"
#include "image/smart/il_smart_image.h"

namespace {

using namespace brushwork;

constexpr std::int32_t side = 8192;
constexpr std::int32_t bandRows = pageSide;
constexpr std::uint64_t ceilingBytes = std::uint64_t{256} << 20;

struct Disc {
    float x, y, radius;
    std::uint32_t color;  // opaque
};

// The discs of one layer: 120 strokes, each a curve of the second degree.
std::vector<Disc> discsOf(int layer) {
    std::mt19937 random(static_cast<unsigned>(layer) + 1);
    const auto upTo = [&random](float most) {
        return static_cast<float>(random() >> 8) / 16777216.0f * most;
    };
    std::vector<Disc> discs;
    for (int stroke = 0; stroke < 120; ++stroke) {
        const float ax = upTo(side), ay = upTo(side);
        const float bx = ax + upTo(4000) - 2000, by = ay + upTo(4000) - 2000;
        const float cx = bx + upTo(4000) - 2000, cy = by + upTo(4000) - 2000;
        const float radius = 20 + upTo(180);
        const auto color = static_cast<std::uint32_t>(random() >> 8) | 0xFF000000U;
        const float length = std::hypot(bx - ax, by - ay) + std::hypot(cx - bx, cy - by);
        const int count = static_cast<int>(length / (radius / 2)) + 1;
        for (int n = 0; n <= count; ++n) {
            const float t = static_cast<float>(n) / static_cast<float>(count), s = 1 - t;
            discs.push_back({s * s * ax + 2 * s * t * bx + t * t * cx,
                             s * s * ay + 2 * s * t * by + t * t * cy, radius, color});
        }
    }
    return discs;
}

// One band of a layer as pixels, without the engine.
class Band {
  public:
    Band() : pixels_(std::size_t{side} * bandRows) {}

    void paint(const std::vector<Disc>& discs, std::int32_t y) {
        std::fill(pixels_.begin(), pixels_.end(), 0);
        for (const Disc& disc : discs) {
            const auto from = std::max(y, static_cast<std::int32_t>(disc.y - disc.radius));
            const auto to =
                std::min(y + bandRows, static_cast<std::int32_t>(disc.y + disc.radius) + 1);
            for (std::int32_t row = from; row < to; ++row) paintRow(disc, row, y);
        }
    }
    [[nodiscard]] const std::vector<std::uint32_t>& pixels() const { return pixels_; }

  private:
    void paintRow(const Disc& disc, std::int32_t row, std::int32_t y) {
        const float dy = static_cast<float>(row) - disc.y;
        const float inside = disc.radius * disc.radius - dy * dy;
        if (inside <= 0) return;
        const float half = std::sqrt(inside);
        const auto from = std::max(0, static_cast<std::int32_t>(disc.x - half) + 1);
        const auto to = std::min(side, static_cast<std::int32_t>(disc.x + half) + 1);
        std::uint32_t* line =
            pixels_.data() + std::size_t{side} * static_cast<std::size_t>(row - y);
        const float scale = 1.0f / (disc.radius * disc.radius);
        for (std::int32_t x = from; x < to; ++x) {
            const float dx = static_cast<float>(x) - disc.x;
            // Full in the inner half, then falling to nothing.
            const float away = (dx * dx + dy * dy) * scale;
            const auto part =
                static_cast<std::uint32_t>(std::clamp(2.0f - 2.0f * away, 0.0f, 1.0f) * 102.0f);
            line[x] = mixed(line[x], disc.color, part);
        }
    }
    // All four bytes at once; `part` of 256.
    static std::uint32_t mixed(std::uint32_t below, std::uint32_t above, std::uint32_t part) {
        constexpr std::uint32_t odd = 0x00FF00FF;
        const std::uint32_t rest = 256 - part;
        const std::uint32_t even = ((below & odd) * rest + (above & odd) * part) >> 8 & odd;
        const std::uint32_t others = ((below >> 8 & odd) * rest + (above >> 8 & odd) * part) & ~odd;
        return even | others;
    }
    std::vector<std::uint32_t> pixels_;
};

std::uint64_t mixedIn(std::uint64_t sum, const std::vector<std::uint32_t>& pixels) {
    for (std::size_t i = 0; i < pixels.size(); i += 2) {
        std::uint64_t word;
        std::memcpy(&word, pixels.data() + i, sizeof word);
        sum = (sum ^ word) * 0x9E3779B97F4A7C15U;
        sum ^= sum >> 29;
    }
    return sum;
}

// In kilobytes; 0 where the system doesn't tell.
std::uint64_t statusFigure(std::string_view name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, name.size(), name) == 0)
            return std::strtoull(line.c_str() + name.size() + 1, nullptr, 10);
    return 0;
}

class Stopwatch {
  public:
    [[nodiscard]] double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

int run(bool manager, int layers) {
    SmartImageCache& cache = SmartImageCache::instance();
    if (manager) BworkMemory::instance().enable(true);
    cache.setCeiling(ceilingBytes);
    auto band = std::make_unique<Band>();
    const std::uint64_t base = statusFigure("VmRSS:");
    double painting = 0, writing = 0, reading = 0;
    std::uint64_t covered = 0;
    std::vector<Ref<ilSmartImage>> document;
    std::vector<std::uint64_t> sums;
    for (int layer = 0; layer < layers; ++layer) {
        const std::vector<Disc> discs = discsOf(layer);
        document.emplace_back(new ilSmartImage(ilPixel(TypeUChar, 4)));
        std::uint64_t sum = 0;
        for (std::int32_t y = 0; y < side; y += bandRows) {
            const Stopwatch paint;
            band->paint(discs, y);
            sum = mixedIn(sum, band->pixels());
            for (const std::uint32_t pixel : band->pixels()) covered += pixel != 0;
            painting += paint.seconds();
            const Stopwatch write;
            const ilTile box = flatTile(0, y, side, bandRows);
            if (document.back()->writeRegion(box, band->pixels().data(), box) != ImageOk) return 1;
            writing += write.seconds();
        }
        sums.push_back(sum);
    }
    const SmartImageCache::Counts written = cache.counts();
    const std::uint64_t swapped = cache.bigSwap().endOfFile();
    band.reset();
    std::vector<std::uint32_t> shown(std::size_t{side} * bandRows);
    int wrong = 0;
    for (std::size_t layer = 0; layer < document.size(); ++layer) {
        std::uint64_t sum = 0;
        for (std::int32_t y = 0; y < side; y += bandRows) {
            const Stopwatch read;
            const ilTile box = flatTile(0, y, side, bandRows);
            if (document[layer]->readRegion(box, shown.data(), box) != ImageOk) return 1;
            reading += read.seconds();
            sum = mixedIn(sum, shown);
        }
        wrong += sum != sums[layer];
    }
    const double megabytes = static_cast<double>(layers) * side * side * 4 / 1e6;
    const double all = static_cast<double>(layers) * side * side;
    const std::uint64_t most = statusFigure("VmHWM:") << 10;
    const std::uint64_t allowed = ceilingBytes + ceilingBytes * 15 / 100;
    std::printf("%d layers, manager %s: %.0f MB of pixels, %.0f %% covered\n", layers,
                manager ? "on" : "off", megabytes, 100.0 * static_cast<double>(covered) / all);
    std::printf("  painted in %.1f s, written in %.1f s (%.0f MB/s), read in %.1f s (%.0f MB/s)\n",
                painting, writing, megabytes / writing, reading, megabytes / reading);
    std::printf("  swap file %.0f MB, pages out %llu, in %llu\n",
                static_cast<double>(swapped) / 1e6,
                static_cast<unsigned long long>(written.swapWrites),
                static_cast<unsigned long long>(cache.counts().swapReads));
    std::printf("  layers that differ: %d\n", wrong);
    std::printf("  memory: %.1f MiB at most, %.1f before the first layer, %.1f allowed: %s\n",
                static_cast<double>(most) / 1048576, static_cast<double>(base) / 1024,
                static_cast<double>(allowed) / 1048576, most <= allowed ? "kept" : "EXCEEDED");
    return wrong == 0 && most <= allowed ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
    const bool manager = count < 2 || std::string_view(arguments[1]) != "off";
    const int layers = count < 3 ? 60 : std::clamp(std::atoi(arguments[2]), 1, 60);
    return run(manager, layers);
}
