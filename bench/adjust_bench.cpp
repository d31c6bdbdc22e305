// The colour adjustments on 2048 x 2048 pixels of four bytes, one thread, each kind at each vector
// level, beside the bound: reading and writing the same pixels. Then a dragged slider: 200 applies
// with one analysis. Prints medians, without the time of putting the pixels back.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench_clock.h"
#include "foundation/services/vector_level.h"
#include "image/filter/il_color_adjust_img.h"

namespace {

using namespace brushwork;

constexpr std::int32_t side = 2048;
constexpr std::size_t count = std::size_t{side} * side;

// Soft colours with some noise, a part of them translucent or grey.
std::vector<std::uint32_t> picture() {
    std::vector<std::uint32_t> pixels(count);
    std::uint32_t state = 1;
    for (std::size_t n = 0; n < count; ++n) {
        state = state * 1664525u + 1013904223u;
        const std::size_t x = n % side, y = n / side;
        const std::uint32_t alpha = (x / 256 + y / 256) % 4 == 0 ? state >> 24 : 255;
        const auto channel = [&](std::size_t way) {
            return static_cast<std::uint32_t>(way / 9 % 240 + (state >> 20) % 16) * alpha / 255;
        };
        const std::uint32_t red = channel(x), green = y % 64 < 8 ? red : channel(y);
        pixels[n] = red | green << 8 | (y % 64 < 8 ? red : channel(x + y)) << 16 | alpha << 24;
    }
    return pixels;
}

struct Kind {
    const char* name;
    ColorAdjustParm parm;
};

std::vector<Kind> kinds() {
    std::vector<Kind> all(7);
    all[0].name = "tone balance";
    all[0].parm.addToneBalance(3, 0.2f, 0.1f);
    all[1].name = "tone gain";
    all[1].parm.addToneGain(1, 0.3f, -0.1f);
    all[2].name = "tint";
    all[2].parm.mixToneTint(0, 1, 0.5f);
    all[2].parm.mixToneTint(2, 4, 0.5f);
    all[3].name = "ranges";
    all[3].parm.reset(AdjustRanges);
    all[3].parm.hueRange = {0.9f, 0.0f, 0.2f, 0.4f};
    all[3].parm.useSaturation = all[3].parm.useLightness = 0;
    all[4].name = "shown ranges";
    all[4].parm = all[3].parm;
    all[4].parm.kind = AdjustShowRanges;
    all[5].name = "hsl";
    all[5].parm.setHsl(2, {0.0f, 40.0f}, {0.0f, 0.2f}, {0.0f, 0.1f});
    all[6].name = "invert";
    all[6].parm.reset(AdjustInvert);
    return all;
}

class Bench {
  public:
    void addBound() {
        bound_ = rounds_.add("read and write", [this] {
            refill();
            auto* const words = reinterpret_cast<std::uint32_t*>(image_->data());
            for (std::size_t n = 0; n < count; ++n) words[n] ^= 0x00FFFFFFu;
        });
        refill_ = rounds_.add("put back", [this] { refill(); });
    }
    void add(const Kind& kind, VectorLevel level) {
        rounds_.add(std::string(kind.name) + ", " + vectorLevelName(level), [this, &kind, level] {
            forceVectorLevel(level);
            refill();
            if (!image_->apply(&kind.parm, slot_)) std::abort();
        });
    }
    void addFirst(const Kind& kind) {
        rounds_.add(std::string(kind.name) + ", first apply", [this, &kind] {
            forceVectorLevel(VectorLevel::Avx2);
            refill();
            Ref<ToneAnalysis> slot;
            if (!image_->apply(&kind.parm, slot)) std::abort();
        });
    }
    void run() {
        rounds_.run(10, 30);
        const double idle = rounds_.median(refill_);
        const double least = rounds_.median(bound_) - idle;
        for (const bench::Job& job : rounds_.jobs()) {
            const double time = job.median() - idle;
            if (&job == &rounds_.jobs()[refill_]) continue;
            std::printf("%-26s %8.2f ms %8.0f Mpx/s   %5.1f %% of the bound\n", job.name.c_str(),
                        time * 1e3, count / time / 1e6, 100.0 * least / time);
        }
    }
    void drag(const Kind& kind) {
        const std::uint64_t before = ToneAnalysis::madeCount();
        Ref<ToneAnalysis> slot;
        for (int n = 0; n < 200; ++n) {
            refill();
            ColorAdjustParm parm = kind.parm;
            parm.toneBrightness[0] += 0.005f * static_cast<float>(n);
            if (!image_->apply(&parm, slot)) std::abort();
        }
        std::printf("200 applies with one slot: analyses made %d\n",
                    static_cast<int>(ToneAnalysis::madeCount() - before));
    }

  private:
    void refill() { std::memcpy(image_->data(), source_.data(), count * 4); }

    std::vector<std::uint32_t> source_ = picture();
    Ref<ilColorAdjustImg> image_{new ilColorAdjustImg(side, side, 4)};
    Ref<ToneAnalysis> slot_;
    bench::Rounds rounds_;
    std::size_t bound_ = 0, refill_ = 0;
};

}  // namespace

int main() {
    const std::vector<Kind> all = kinds();
    Bench bench;
    bench.addBound();
    for (const Kind& kind : all)
        for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2})
            bench.add(kind, level);
    bench.addFirst(all[0]);
    bench.run();
    bench.drag(all[0]);
    return 0;
}
