// Whole blends as the engine runs them: a Blender over pictures of 4096 x 4096 pixels, with one
// thread and with two, from a source that is semi-transparent, opaque or empty, and through a
// constant mask of 255, which is to cost nothing. Prints millions of pixels a second and, beside
// them, what one and two threads copy, which bounds what a second thread can add.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "bench_clock.h"
#include "blending/modes/blender_registry.h"
#include "foundation/tasks/task_pool.h"
#include "image/work/il_sp_memory_img.h"

namespace {

using namespace brushwork;

constexpr std::int32_t side = 4096;
constexpr std::size_t pixels = std::size_t{side} * side;

enum class Kind { Semi, Opaque, Empty };

constexpr const char* nameOf(Kind kind) {
    return kind == Kind::Semi ? "semi" : kind == Kind::Opaque ? "opaque" : "empty";
}

void fillWithNoise(ilSPMemoryImg& image, Kind kind, std::uint32_t state) {
    const auto next = [&] {
        state = state * 1664525U + 1013904223U;
        return state >> 24;
    };
    std::uint8_t* pixel = image.data();
    for (std::size_t i = 0; i < pixels; ++i, pixel += 4) {
        const std::uint32_t alpha = kind == Kind::Empty    ? 0
                                    : kind == Kind::Opaque ? 255
                                                           : 1 + next() % 254;
        for (int c = 0; c < 3; ++c) pixel[c] = static_cast<std::uint8_t>(next() * alpha / 255);
        pixel[3] = static_cast<std::uint8_t>(alpha);
    }
}

struct Pictures {
    Ref<ilSPMemoryImg> target = makeRef<ilSPMemoryImg>(side, side, 4);
    Ref<ilSPMemoryImg> source = makeRef<ilSPMemoryImg>(side, side, 4);

    void copyRows(std::size_t from, std::size_t to) const {
        std::memcpy(target->data() + 4 * from, source->data() + 4 * from, 4 * (to - from));
    }
};

double gigabytesOfCopies(const Pictures& pictures, int threads) {
    bench::Rounds rounds;
    rounds.add("copy", [&] {
        std::thread other;
        if (threads == 2) other = std::thread([&] { pictures.copyRows(pixels / 2, pixels); });
        pictures.copyRows(0, threads == 2 ? pixels / 2 : pixels);
        if (other.joinable()) other.join();
    });
    rounds.run(10, 30);
    return static_cast<double>(pixels) * 8 / 1e9 / rounds.median(0);
}

void measure(const Pictures& pictures, Kind kind, BlendModeId mode) {
    const auto blender = npc::createBlender(mode);
    blender->setDestination(pictures.target.get(), 0, 0);
    blender->setSource(pictures.source.get(), 0, 0, false);
    const ilTile all = flatTile(0, 0, side, side);
    bench::Rounds rounds;
    rounds.add("one", [&] {
        blender->setThreaded(false);
        blender->run(all);
    });
    rounds.add("two", [&] {
        blender->setThreaded(true);
        blender->run(all);
    });
    const auto masked = npc::createBlender(mode);
    masked->setDestination(pictures.target.get(), 0, 0);
    masked->setSource(pictures.source.get(), 0, 0, false);
    masked->setConstantMask(255);
    masked->setThreaded(false);
    rounds.add("mask", [&] { masked->run(all); });
    rounds.run(10, 20);
    const double megapixels = static_cast<double>(pixels) / 1e6;
    const std::string name(blendModeName(mode));
    std::printf("  %-7s %-12s one %6.0f  two %6.0f  x %.2f   mask of 255: %6.0f\n", nameOf(kind),
                name.c_str(), megapixels / rounds.median(0), megapixels / rounds.median(1),
                rounds.median(0) / rounds.median(1), megapixels / rounds.median(2));
}

}  // namespace

int main() {
    TaskPool::setDefaultSize(2);
    const Pictures pictures;
    fillWithNoise(*pictures.target, Kind::Semi, 1);
    fillWithNoise(*pictures.source, Kind::Semi, 2);
    const double one = gigabytesOfCopies(pictures, 1), two = gigabytesOfCopies(pictures, 2);
    std::printf("%d x %d, Mpx/s; copies: one thread %.1f GB/s, two %.1f GB/s, x %.2f\n", side, side,
                one, two, two / one);
    fillWithNoise(*pictures.target, Kind::Semi, 1);
    for (const BlendModeId mode :
         {BlendModeId::Normal, BlendModeId::Multiply, BlendModeId::SoftLight, BlendModeId::Hue})
        measure(pictures, Kind::Semi, mode);
    for (const Kind kind : {Kind::Opaque, Kind::Empty}) {
        fillWithNoise(*pictures.source, kind, 3);
        measure(pictures, kind, BlendModeId::Normal);
    }
    return 0;
}
