// Masks of stamps, one thread: radius 4, 16, 64 and 256, hard and soft, level and turned, in the
// scalar, SSE2 and AVX2 forms; then whole stamps from the maker, found and made anew, and image
// tips. Prints medians: stamps a second and millions of stamp pixels (of the box) a second.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "foundation/services/vector_level.h"
#include "foundation/tasks/task_pool.h"
#include "strokes/stamp/stamp_coverage.h"
#include "strokes/stamp/stamp_maker.h"

namespace {

using namespace brushwork;

constexpr VectorLevel levels[] = {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2};
constexpr float radii[] = {4.0f, 16.0f, 64.0f, 256.0f};

// About as much work for every radius.
int repeatsFor(float radius) {
    return std::clamp(static_cast<int>(2.0e6f / (4.0f * radius * radius + 200.0f)), 2, 20000);
}

StampPoint pointAt(float radius, float angle, int phase) {
    StampPoint point;
    point.x = 300.0f + static_cast<float>(phase % 16) / 16.0f;
    point.y = 300.0f + static_cast<float>(phase / 16 % 16) / 16.0f;
    point.radius = radius;
    point.angle = angle;
    return point;
}

struct Line {
    std::string name;
    std::size_t jobs[3];
    double stamps, pixels;  // a run; pixels of all its stamps
};

void print(const bench::Rounds& rounds, const std::vector<Line>& lines) {
    std::printf("%-34s %27s %27s %27s\n", "stamps/s (Mpx/s of the box)", "scalar", "sse2", "avx2");
    for (const Line& line : lines) {
        std::printf("%-34s", line.name.c_str());
        for (const std::size_t job : line.jobs) {
            const double seconds = rounds.median(job);
            std::printf(" %14.0f (%9.1f)", line.stamps / seconds, line.pixels / seconds * 1e-6);
        }
        std::printf("\n");
    }
}

// Masks alone, tables made beforehand or with each.
void benchMasks() {
    bench::Rounds rounds;
    std::vector<Line> lines;
    std::vector<std::uint8_t> pixels(std::size_t{1024} * 1024);
    npc::StampMaskTable table;
    for (const float radius : radii)
        for (const float hardness : {1.0f, 0.0f})
            for (const float angle : {0.0f, 33.0f}) {
                char name[64];
                std::snprintf(name, sizeof name, "mask r %g %s %s", static_cast<double>(radius),
                              hardness > 0.5f ? "hard" : "soft", angle > 0.0f ? "turned" : "level");
                const int repeats = repeatsFor(radius);
                const ilTile box = npc::stampFrame(pointAt(radius, angle, 0)).box;
                Line line{name,
                          {},
                          static_cast<double>(repeats),
                          static_cast<double>(repeats) * box.nx * box.ny};
                for (int k = 0; k < 3; ++k)
                    line.jobs[k] = rounds.add(name, [=, &table, &pixels] {
                        for (int n = 0; n < repeats; ++n) {
                            const auto frame = npc::stampFrame(pointAt(radius, angle, n));
                            table.build(radius, hardness);
                            npc::CoverageJob job;
                            job.map = frame.toBrush;
                            job.profile = table.profileFor(1.0f, 1.0f);
                            job.rows = frame.box.ny;
                            job.width = frame.box.nx;
                            job.rowBytes = (job.width + 15) & ~15;
                            job.pixels = pixels.data();
                            npc::coverRows(job, levels[k]);
                        }
                    });
                lines.push_back(line);
            }
    rounds.run(10, 60);
    print(rounds, lines);
}

Ref<ilSPMemoryImg> noise(std::int32_t side, std::int32_t channels) {
    const auto image = makeRef<ilSPMemoryImg>(side, side, channels);
    std::uint32_t state = 1;
    for (std::size_t n = 0; n < image->byteSize(); ++n) {
        state = state * 1664525u + 1013904223u;
        image->data()[n] = static_cast<std::uint8_t>(state >> 24);
    }
    return image;
}

// Whole stamps: found in the cache, made into scratch images, made and kept at sizes that change.
void benchMaker() {
    bench::Rounds rounds;
    std::vector<Line> lines;
    const auto shape = makeRef<ImagePaintObj>(noise(128, 1), ImagePaintObj::Levels::Reduced);
    const auto colors = makeRef<ImagePaintObj>(noise(128, 4), ImagePaintObj::Levels::Reduced);
    enum class Way { Found, Scratch, Kept, Shape, Colors };
    const char* const names[] = {"found", "made, scratch", "made, new size each",
                                 "made, with shape", "made, shape and colours"};
    for (const float radius : radii)
        for (const Way way : {Way::Found, Way::Scratch, Way::Kept, Way::Shape, Way::Colors}) {
            char name[64];
            std::snprintf(name, sizeof name, "r %g soft %s", static_cast<double>(radius),
                          names[static_cast<int>(way)]);
            const int repeats = repeatsFor(radius);
            Line line{name,
                      {},
                      static_cast<double>(repeats),
                      static_cast<double>(repeats) * 4.0 * radius * radius};
            for (int k = 0; k < 3; ++k)
                line.jobs[k] = rounds.add(name, [=] {
                    forceVectorLevel(levels[k]);
                    npc::StampTip tip;
                    tip.hardness = 0.28f;
                    if (way == Way::Shape || way == Way::Colors) tip.shape = shape;
                    if (way == Way::Colors) tip.color = colors;
                    tip.colors =
                        way == Way::Colors ? npc::StampColors::Kept : npc::StampColors::None;
                    npc::StampMaker maker(makeRef<npc::StampImageCache>());
                    maker.setTip(tip);
                    maker.setCacheEnabled(way == Way::Found || way == Way::Kept);
                    for (int n = 0; n < repeats; ++n) {
                        const float grown =
                            way == Way::Kept ? radius * (1.0f + static_cast<float>(n % 64) / 64.0f)
                                             : radius;
                        const int phase = way == Way::Found ? n % 4 : n;
                        (void)maker.make(maker.quantized(pointAt(grown, 0.0f, phase)));
                    }
                    forceVectorLevel(VectorLevel::Avx2);
                });
            lines.push_back(line);
        }
    rounds.run(5, 30);
    print(rounds, lines);
}

}  // namespace

int main() {
    TaskPool::instance().stop();  // all on this thread
    benchMasks();
    benchMaker();
    return 0;
}
