// Paint and the wet brushes on targets of two planes, one thread: a stamp of 128 x 128 pixels with
// a soft round mask, which stays in the cache, and 2048 x 2048 pixels of such stamps. Prints
// millions of pixels a second for each form and, beside them, what the memory would allow: the
// same planes read, changed by one operation and written in place.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "blending/modes/glow_brush_mode.h"
#include "blending/modes/marker_colorless_mode.h"
#include "blending/modes/marker_mode.h"
#include "blending/modes/paint_modes.h"
#include "blending/modes/pastel_mode.h"
#include "blending/modes/smudge_mode.h"
#include "foundation/services/vector_level.h"

namespace {

using namespace brushwork;

struct Mode {
    std::string name;
    std::unique_ptr<npc::GenericBlender> blender;
    bool carries;
};

std::vector<Mode> modes() {
    std::vector<Mode> list;
    auto paint = std::make_unique<npc::PaintBlender>();
    paint->setFlow(0.6F);
    list.push_back({"Paint", std::move(paint), false});
    auto solid = std::make_unique<npc::SolidColorPaintBlender>();
    solid->setFlow(0.6F);
    list.push_back({"SolidColorPaint", std::move(solid), false});
    list.push_back({"Marker", std::make_unique<npc::MarkerBlender>(), false});
    list.push_back({"GlowBrush", std::make_unique<npc::GlowBrushBlender>(), false});
    auto colorless = std::make_unique<npc::MarkerColorlessBlender>();
    colorless->setStrength(0.25F);
    list.push_back({"MarkerColorless", std::move(colorless), true});
    auto smudge = std::make_unique<npc::SmudgeBlender>();
    smudge->setPickup(0.05F);
    list.push_back({"Smudge", std::move(smudge), true});
    auto pastel = std::make_unique<npc::PastelBlender>();
    pastel->setPickup(3000.0F);
    pastel->setCanvasMix(60000.0F);
    pastel->setColorLoad(40000.0F);
    list.push_back({"Pastel", std::move(pastel), true});
    for (const Mode& mode : list) mode.blender->setOpacity(0.9F);
    return list;
}

std::vector<std::uint8_t> noise(std::size_t bytes, std::uint32_t state) {
    std::vector<std::uint8_t> pixels(bytes);
    for (std::uint8_t& byte : pixels) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return pixels;
}

// Soft round stamps of radius 64 side by side.
std::vector<std::uint8_t> stamps(std::size_t side) {
    std::vector<std::uint8_t> mask(side * side);
    for (std::size_t i = 0; i < mask.size(); ++i) {
        const double x = static_cast<double>(i % side % 128) - 63.5;
        const double y = static_cast<double>(i / side % 128) - 63.5;
        const double fall = std::fmax(0.0, 1.0 - (x * x + y * y) / 4096.0);
        mask[i] = static_cast<std::uint8_t>(255.0 * fall * fall);
    }
    return mask;
}

void touch(std::vector<std::uint8_t>& bytes) {
    for (std::uint8_t& byte : bytes) byte ^= 0x55;
}

void measure(const Mode& mode, std::size_t side) {
    const std::size_t pixels = side * side;
    const std::size_t repeats = side <= 128 ? 64 : 1;
    const std::size_t planes = mode.carries ? 4 : 2;
    std::vector<std::vector<std::uint8_t>> plane;
    for (std::uint32_t i = 0; i < 4; ++i) plane.push_back(noise(pixels * 4, i + 1));
    std::vector<std::uint8_t> mask = stamps(side);
    std::uint32_t color[8];
    for (std::uint32_t& word : color) word = 0xF0402080;

    npc::KernelRow first;
    first.hi = plane[0].data();
    first.lo = plane[1].data();
    first.source = mode.carries ? plane[2].data() : reinterpret_cast<std::uint8_t*>(color);
    first.source2 = mode.carries ? plane[3].data() : nullptr;
    first.sourceStride = mode.carries ? 1 : 0;
    first.mask = mask.data();
    first.maskStride = 1;
    first.count = side;
    const auto pass = [&](npc::Kernel kernel) {
        for (std::size_t repeat = 0; repeat < repeats; ++repeat) {
            for (std::size_t y = 0; y < side; ++y) {
                npc::KernelRow row = first;
                row.hi += y * side * 4;
                row.lo += y * side * 4;
                row.mask += y * side;
                if (mode.carries) {
                    row.source += y * side * 4;
                    row.source2 += y * side * 4;
                }
                kernel(*mode.blender, row);
            }
        }
    };

    bench::Rounds rounds;
    rounds.add("plain", [&] { pass(mode.blender->kernels().dualPlaneMasked); });
    for (const VectorLevel level : {VectorLevel::Sse2, VectorLevel::Avx2}) {
        rounds.add(vectorLevelName(level), [&, level] {
            forceVectorLevel(level);
            pass(mode.blender->kernels().dualPlaneMaskedVector);
        });
    }
    const std::size_t touching = rounds.add("memory", [&] {
        for (std::size_t repeat = 0; repeat < repeats; ++repeat)
            for (std::size_t i = 0; i < planes; ++i) touch(plane[i]);
    });
    rounds.run(10, 30);

    std::printf("  %-16s", mode.name.c_str());
    const double work = static_cast<double>(pixels * repeats) / 1e6;
    double best = 0.0;
    for (const bench::Job& job : rounds.jobs()) {
        const double speed = work / job.median();
        if (&job == &rounds.jobs()[touching]) {
            std::printf("  memory %7.0f  bound: %s\n", speed,
                        best > 0.7 * speed ? "memory" : "arithmetic");
        } else {
            best = speed;
            std::printf("  %s %7.0f", job.name.c_str(), speed);
        }
    }
}

}  // namespace

int main() {
    for (const std::size_t side : {std::size_t{128}, std::size_t{2048}}) {
        std::printf("%zu x %zu, Mpx/s\n", side, side);
        for (const Mode& mode : modes()) measure(mode, side);
    }
    return 0;
}
