// The 4-channel modes on 128 x 128, 1024 x 1024 and 4096 x 4096 pixels, one thread, each beside
// pixman's operator of the same name in the same run if the build has it. All pixels are
// semi-transparent. Prints medians in millions of pixels a second, the ratio with the one that is
// aimed at, and the bandwidth of a copy of the same pictures, which bounds the large ones: a blend
// moves 12 bytes a pixel, a copy 8.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "blending/modes/blender_registry.h"
#include "foundation/services/vector_level.h"

#ifdef BRUSHWORK_WITH_PIXMAN
#include <pixman.h>
#endif

namespace {

using namespace brushwork;

struct Peer {
    int op = -1;  // none
    double aim = 0.0;
};

#ifdef BRUSHWORK_WITH_PIXMAN
Peer peerOf(BlendModeId mode) {
    switch (mode) {
        case BlendModeId::Normal: return {PIXMAN_OP_OVER, 1.8};
        case BlendModeId::Multiply: return {PIXMAN_OP_MULTIPLY, 8};
        case BlendModeId::Screen: return {PIXMAN_OP_SCREEN, 8};
        case BlendModeId::Overlay: return {PIXMAN_OP_OVERLAY, 8};
        case BlendModeId::Lighten: return {PIXMAN_OP_LIGHTEN, 8};
        case BlendModeId::Darken: return {PIXMAN_OP_DARKEN, 8};
        case BlendModeId::HardLight: return {PIXMAN_OP_HARD_LIGHT, 8};
        case BlendModeId::SoftLight: return {PIXMAN_OP_SOFT_LIGHT, 10};
        case BlendModeId::ColorDodge: return {PIXMAN_OP_COLOR_DODGE, 10};
        case BlendModeId::ColorBurn: return {PIXMAN_OP_COLOR_BURN, 10};
        case BlendModeId::Hue: return {PIXMAN_OP_HSL_HUE, 10};
        case BlendModeId::Saturation: return {PIXMAN_OP_HSL_SATURATION, 10};
        case BlendModeId::Color: return {PIXMAN_OP_HSL_COLOR, 10};
        case BlendModeId::Luminosity: return {PIXMAN_OP_HSL_LUMINOSITY, 10};
        default: return {};
    }
}
#else
Peer peerOf(BlendModeId) {
    return {};
}
#endif

// Semi-transparent premultiplied noise.
std::vector<std::uint8_t> noise(std::size_t pixels, std::uint32_t state) {
    std::vector<std::uint8_t> bytes(4 * pixels);
    const auto next = [&] {
        state = state * 1664525U + 1013904223U;
        return state >> 24;
    };
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        const std::uint32_t alpha = 1 + next() % 254;
        for (std::size_t c = 0; c < 3; ++c)
            bytes[i + c] = static_cast<std::uint8_t>(next() * alpha / 255);
        bytes[i + 3] = static_cast<std::uint8_t>(alpha);
    }
    return bytes;
}

// The pictures of one size.
struct Pictures {
    int side;
    std::size_t pixels;
    int repeats;  // calls in one measurement
    std::vector<std::uint8_t> source, target, mask;
    alignas(32) std::array<std::uint32_t, 8> color;

    explicit Pictures(int n)
        : side(n),
          pixels(static_cast<std::size_t>(n) * static_cast<std::size_t>(n)),
          repeats(n <= 128    ? 200
                  : n <= 1024 ? 4
                              : 1),
          source(noise(pixels, 1)),
          target(noise(pixels, 2)),
          mask(pixels) {
        const std::vector<std::uint8_t> bytes = noise(pixels / 4 + 1, 3);
        for (std::size_t i = 0; i < pixels; ++i)
            mask[i] = static_cast<std::uint8_t>(1 + bytes[i] % 254);
        color.fill(0xB0402080);
    }

    // Pictures too large for the caches are measured in the widest form alone: there the others
    // tell nothing that the small ones don't.
    [[nodiscard]] std::vector<VectorLevel> levels() const {
        if (side > 2000) return {VectorLevel::Avx2};
        return {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2};
    }
};

enum class Shape { Image, ImageMasked, ColorMasked };

void blend(const npc::GenericBlender& blender, Pictures& p, Shape shape) {
    npc::KernelRow row;
    row.hi = p.target.data();
    row.source = p.source.data();
    row.sourceStride = 1;
    row.count = p.pixels;
    if (shape != Shape::Image) {
        row.mask = p.mask.data();
        row.maskStride = 1;
    }
    if (shape == Shape::ColorMasked) {
        row.source = reinterpret_cast<std::uint8_t*>(p.color.data());
        row.sourceStride = 0;
    }
    const npc::KernelTable& table = blender.kernels();
    const npc::Kernel kernel = row.mask != nullptr ? table.rgbaMaskedVector : table.rgbaVector;
    for (int i = 0; i < p.repeats; ++i) kernel(blender, row);
}

#ifdef BRUSHWORK_WITH_PIXMAN
class PixmanJob {
  public:
    PixmanJob(Pictures& p, Shape shape, int op)
        : side_(p.side), repeats_(p.repeats), op_(static_cast<pixman_op_t>(op)) {
        const auto bits = [&](pixman_format_code_t format, std::vector<std::uint8_t>& bytes,
                              int stride) {
            return pixman_image_create_bits(format, side_, side_,
                                            reinterpret_cast<std::uint32_t*>(bytes.data()), stride);
        };
        target_ = bits(PIXMAN_a8r8g8b8, p.target, 4 * side_);
        if (shape != Shape::Image) mask_ = bits(PIXMAN_a8, p.mask, side_);
        const pixman_color_t color = {0x4040, 0x2020, 0x8080, 0xB0B0};
        source_ = shape == Shape::ColorMasked ? pixman_image_create_solid_fill(&color)
                                              : bits(PIXMAN_a8r8g8b8, p.source, 4 * side_);
    }
    PixmanJob(const PixmanJob&) = delete;
    PixmanJob& operator=(const PixmanJob&) = delete;
    ~PixmanJob() {
        for (pixman_image_t* image : {source_, mask_, target_})
            if (image != nullptr) pixman_image_unref(image);
    }
    void run() const {
        for (int i = 0; i < repeats_; ++i)
            pixman_image_composite32(op_, source_, mask_, target_, 0, 0, 0, 0, 0, 0, side_, side_);
    }

  private:
    int side_, repeats_;
    pixman_op_t op_;
    pixman_image_t *source_ = nullptr, *mask_ = nullptr, *target_ = nullptr;
};
#endif

void measure(Pictures& p, const std::string& name, BlendModeId mode, Shape shape, Peer peer) {
    const auto blender = npc::createBlender(mode);
    if (shape == Shape::ImageMasked) blender->setOpacity(0.8F);
    bench::Rounds rounds;
    for (const VectorLevel level : p.levels()) {
        rounds.add(vectorLevelName(level), [&, level] {
            forceVectorLevel(level);
            blend(*blender, p, shape);
        });
    }
    const std::size_t widest = rounds.jobs().size() - 1;
#ifdef BRUSHWORK_WITH_PIXMAN
    std::unique_ptr<PixmanJob> job;
    if (peer.op >= 0) {
        job = std::make_unique<PixmanJob>(p, shape, peer.op);
        rounds.add("pixman", [&] { job->run(); });
    }
#endif
    rounds.run(p.side > 2000 ? 5 : 10, p.side > 2000 ? 10 : 30);
    const double work = static_cast<double>(p.pixels) * p.repeats / 1e6;
    std::printf("%-22s", name.c_str());
    for (const bench::Job& done : rounds.jobs()) std::printf(" %8.1f", work / done.median());
    if (rounds.jobs().size() > widest + 1) {
        std::printf("   x %.2f", rounds.median(widest + 1) / rounds.median(widest));
        if (peer.aim > 0.0) std::printf(" (aim %.1f)", peer.aim);
    }
    std::printf("\n");
    std::fflush(stdout);
}

void measureAll(int side) {
    Pictures p(side);
    bench::Rounds copy;
    copy.add("copy", [&] {
        for (int i = 0; i < p.repeats; ++i)
            std::memcpy(p.target.data(), p.source.data(), 4 * p.pixels);
    });
    copy.run(10, 40);
    p.target = noise(p.pixels, 2);
    const double megapixels = static_cast<double>(p.pixels) * p.repeats / 1e6;
    std::printf("\n%d x %d: a copy %.0f Mpx/s, %.1f GB/s\n", side, side,
                megapixels / copy.median(0), megapixels * 8 / 1e3 / copy.median(0));
    std::printf("%-22s", "Mpx/s");
    for (const VectorLevel level : p.levels()) std::printf(" %8s", vectorLevelName(level));
    std::printf(" %8s\n", "pixman");
    const Peer over = peerOf(BlendModeId::Normal);
    measure(p, "Normal", BlendModeId::Normal, Shape::Image, over);
    measure(p, "Normal mask+opacity", BlendModeId::Normal, Shape::ImageMasked, {over.op, 1.2});
    measure(p, "Normal colour+mask", BlendModeId::Normal, Shape::ColorMasked, {over.op, 1.4});
#define BRUSHWORK_MEASURE(name, id, type)                                                    \
    if (BlendModeId::name != BlendModeId::Normal && (id < 25 || id > 32)) {                  \
        const BlendModeId mode = BlendModeId::name;                                          \
        measure(p, #name, mode, Shape::Image, peerOf(mode));                                 \
        measure(p, #name " mask+opacity", mode, Shape::ImageMasked, {peerOf(mode).op, 0.0}); \
    }
    BRUSHWORK_BLEND_MODES(BRUSHWORK_MEASURE)
#undef BRUSHWORK_MEASURE
}

}  // namespace

// The sides of the pictures may be given.
int main(int count, char** values) {
    if (count < 2) {
        for (const int side : {128, 1024, 4096}) measureAll(side);
        return 0;
    }
    for (int i = 1; i < count; ++i) {
        const int side = std::atoi(values[i]);
        if (side < 1 || side > 16384) return 2;
        measureAll(side);
    }
    return 0;
}
