// Compositing a document: all of it anew, one dirty tile, a copy of it. Full recomposition stands
// beside pixman laying the same layers over each other, page by page on contiguous pages of
// 128 x 128, the best layout for it, in the same run. "dense": every pixel is semi-transparent.
// "painted": soft discs, 18 % of the pixels not empty. The side of the pictures may be given.
//
// Pages come from the memory manager, as in programs that switch it on at their start; pixman's
// come from where that has its blocks, so that the huge pages of memory are there for both.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "bench_clock.h"
#include "blending/modes/blender_registry.h"
#include "brushwork/image_memory.h"
#include "document/stack/blend_run.h"
#include "document/stack/layer_stack.h"
#include "foundation/tasks/task_pool.h"
#include "platform/page_memory.h"

#ifdef BRUSHWORK_WITH_PIXMAN
#include <pixman.h>
#endif

namespace {

using namespace brushwork;

constexpr std::int32_t page = 128;
constexpr int layerCount = 20;

struct Random {
    std::uint32_t state;
    std::uint32_t next() {
        state = state * 1664525U + 1013904223U;
        return state >> 8;
    }
    std::int32_t below(std::int32_t end) {
        return static_cast<std::int32_t>(next() % static_cast<std::uint32_t>(end));
    }
};

Ref<ilSmartImage> denseImage(std::int32_t side, std::uint32_t seed) {
    Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    Random random{seed};
    std::vector<std::uint8_t> bytes(4 * page * page);
    for (std::int32_t y = 0; y < side; y += page)
        for (std::int32_t x = 0; x < side; x += page) {
            for (std::size_t n = 0; n < bytes.size(); n += 4) {
                const std::uint32_t alpha = 1 + random.next() % 254;
                const std::uint32_t word = random.next();
                for (std::size_t c = 0; c < 3; ++c)
                    bytes[n + c] = static_cast<std::uint8_t>((word >> (8 * c) & 255) * alpha / 255);
                bytes[n + 3] = static_cast<std::uint8_t>(alpha);
            }
            const ilTile box = flatTile(x, y, page, page);
            image->writeRegion(box, bytes.data(), box);
        }
    return image;
}

// Soft discs, painted box by box: pages that no disc meets are never touched.
Ref<ilSmartImage> paintedImage(std::int32_t side, std::uint32_t seed) {
    Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    Random random{seed};
    double area = 0.182 * side * side;
    std::vector<std::uint8_t> bytes;
    // Strokes: rows of overlapping discs.
    while (area > 0) {
        const std::int32_t radius = 15 + random.below(50);
        const std::int32_t length = 10 + random.below(60);
        float x = static_cast<float>(random.below(side)),
              y = static_cast<float>(random.below(side));
        const float angle = static_cast<float>(random.below(628)) / 100.0F;
        const std::uint32_t color = random.next();
        for (std::int32_t n = 0; n < length; ++n) {
            x += std::cos(angle) * static_cast<float>(radius) * 0.5F;
            y += std::sin(angle) * static_cast<float>(radius) * 0.5F;
            const auto left = static_cast<std::int32_t>(x) - radius;
            const auto bottom = static_cast<std::int32_t>(y) - radius;
            if (left < 0 || bottom < 0 || left + 2 * radius > side || bottom + 2 * radius > side)
                break;
            const ilTile box = flatTile(left, bottom, 2 * radius, 2 * radius);
            bytes.assign(static_cast<std::size_t>(16 * radius * radius), 0);
            image->readRegion(box, bytes.data(), box);
            for (std::int32_t dy = -radius; dy < radius; ++dy)
                for (std::int32_t dx = -radius; dx < radius; ++dx) {
                    const double away = std::sqrt(double(dx) * dx + double(dy) * dy) / radius;
                    if (away >= 1.0) continue;
                    const auto alpha = static_cast<std::uint32_t>((1.0 - away) * 254.0);
                    auto* const pixel = &bytes[4 * static_cast<std::size_t>(
                                                       (dy + radius) * 2 * radius + dx + radius)];
                    if (pixel[3] >= alpha) continue;
                    for (std::uint32_t c = 0; c < 3; ++c)
                        pixel[c] =
                            static_cast<std::uint8_t>((color >> (8 * c) & 255) * alpha / 255);
                    pixel[3] = static_cast<std::uint8_t>(alpha);
                }
            image->writeRegion(box, bytes.data(), box);
            area -= 0.5 * 3.14 * radius * radius * 0.64;
        }
    }
    return image;
}

using ImageMaker = std::function<Ref<ilSmartImage>(std::int32_t side, std::uint32_t seed)>;

Ref<LayerStack> makeStack(std::int32_t side, int layers, const ImageMaker& make) {
    Ref<LayerStack> stack(new LayerStack(0, 0, side, side));
    for (int n = 0; n < layers; ++n) {
        const Ref<ilSmartImage> image = make(side, static_cast<std::uint32_t>(n + 1));
        stack::NewLayer layer;
        layer.color = image.get();
        layer.at = n;
        layer.render = false;
        stack->addLayer(layer);
    }
    return stack;
}

void useThreads(int count) {
    TaskPool::instance().stop();
    if (count > 1) TaskPool::instance().start(count);
}

#ifdef BRUSHWORK_WITH_PIXMAN
struct GiveBack {
    std::size_t bytes = 0;
    void operator()(std::uint8_t* block) const { platform::givePageMemory(block, bytes); }
};
using Bytes = std::unique_ptr<std::uint8_t, GiveBack>;

Bytes zeroedBytes(std::size_t count) {
    auto* const block = static_cast<std::uint8_t*>(platform::takePageMemory(count));
    if (!block) std::exit(3);
    return Bytes(block, GiveBack{count});
}

// The layers as pages, and a target of pages; each page gets all layers before the next.
class PixmanPages {
  public:
    PixmanPages(LayerStack& stack, std::int32_t side) : cells_(side / page) {
        const std::size_t count = 4 * static_cast<std::size_t>(side * side);
        target_ = zeroedBytes(count);
        for (Layer* layer = stack.parts().list.first.get(); layer; layer = layer->next.get()) {
            auto* const bytes = layers_.emplace_back(zeroedBytes(count)).get();
            std::size_t at = 0;
            for (std::int32_t y = 0; y < side; y += page)
                for (std::int32_t x = 0; x < side; x += page, at += 4 * page * page) {
                    const ilTile box = flatTile(x, y, page, page);
                    layer->smartColor()->readRegion(box, bytes + at, box);
                }
        }
    }
    void run(int threads) {
        const std::int32_t half = threads > 1 ? cells_ * cells_ / 2 : cells_ * cells_;
        std::thread other;
        if (threads > 1) other = std::thread([&] { rows(half, cells_ * cells_); });
        rows(0, half);
        if (other.joinable()) other.join();
    }

  private:
    static pixman_image_t* imageOf(const Bytes& bytes, std::int32_t cell) {
        auto* const first = bytes.get() + static_cast<std::size_t>(cell) * 4 * page * page;
        return pixman_image_create_bits(PIXMAN_a8r8g8b8, page, page,
                                        reinterpret_cast<std::uint32_t*>(first), 4 * page);
    }
    void rows(std::int32_t from, std::int32_t to) {
        for (std::int32_t cell = from; cell < to; ++cell) {
            std::memset(target_.get() + static_cast<std::size_t>(cell) * 4 * page * page, 255,
                        4 * page * page);
            pixman_image_t* const target = imageOf(target_, cell);
            for (const Bytes& layer : layers_) {
                pixman_image_t* const source = imageOf(layer, cell);
                pixman_image_composite32(PIXMAN_OP_OVER, source, nullptr, target, 0, 0, 0, 0, 0, 0,
                                         page, page);
                pixman_image_unref(source);
            }
            pixman_image_unref(target);
        }
    }

    std::int32_t cells_;
    std::vector<Bytes> layers_;
    Bytes target_;
};
#endif

void recomposition(const char* name, std::int32_t side, const ImageMaker& make, double aim1,
                   double aim2) {
    const Ref<LayerStack> stack = makeStack(side, layerCount, make);
    stack->setActiveIndex(layerCount, false, false, true);
    bench::Rounds rounds;
    for (const int threads : {1, 2})
        rounds.add("ours", [&, threads] {
            useThreads(threads);
            stack->redrawAll();
        });
#ifdef BRUSHWORK_WITH_PIXMAN
    PixmanPages pages(*stack, side);
    for (const int threads : {1, 2}) rounds.add("pixman", [&, threads] { pages.run(threads); });
#endif
    rounds.run(5, 15);
    const double work = 1e-6 * side * side * layerCount;
    std::printf("%d layers of %d x %d, %s, Mpx-layer/s:", layerCount, side, side, name);
    for (const bench::Job& job : rounds.jobs())
        std::printf("  %s %.0f", job.name.c_str(), work / job.median());
    if (rounds.jobs().size() > 2)
        std::printf("   x %.2f (aim %.1f) on one thread, x %.2f (aim %.1f) on two",
                    rounds.median(2) / rounds.median(0), aim1, rounds.median(2) / rounds.median(1),
                    aim2);
    std::printf("\n");
}

// Dabs here and there on one layer among many, each shown at once.
void dirtyTile(std::int32_t side) {
    constexpr int count = 50;
    // Layers share the pages of a few pictures, as memory is dear here.
    const Ref<ilSmartImage> pictures[] = {denseImage(side, 1), denseImage(side, 2),
                                          paintedImage(side, 3)};
    const Ref<LayerStack> stack = makeStack(
        side, count, [&](std::int32_t, std::uint32_t seed) { return pictures[seed % 3]; });
    useThreads(1);
    stack->setActiveIndex(count / 2, true, false, true);
    stack->present();
    const std::int32_t cells = side / page;
    Random random{7};
    std::uint64_t tiles = 0, runs = 0;
    constexpr int repeats = 200;
    bench::Rounds rounds;
    for (const bool cold : {false, true})
        rounds.add(cold ? "another one each time" : "always the same", [&, cold] {
            const std::uint64_t before = blendRunCount();
            for (int n = 0; n < repeats; ++n) {
                const std::int32_t x = cold ? random.below(cells) : 3;
                const std::int32_t y = cold ? random.below(cells) : 5;
                stack->accumulateDirty(flatTile(x * page, y * page, page, page),
                                       *stack->activeLayer());
                stack->present();
            }
            runs += blendRunCount() - before;
            tiles += repeats;
        });
    rounds.run(10, 40);
    std::printf("one tile of %d layers of %d x %d: %.1f blends a tile", count, side, side,
                static_cast<double>(runs) / static_cast<double>(tiles));
    for (const bench::Job& job : rounds.jobs())
        std::printf(", %s %.1f us", job.name.c_str(), 1e6 * job.median() / repeats);
    std::printf(" (aim 60)\n");
}

}  // namespace

int main(int count, char** values) {
    const std::int32_t side = count > 1 ? std::atoi(values[1]) : 2048;
    if (side < page || side > 8192 || side % page != 0) return 2;
    if (!enableImageMemoryManager()) return 3;
    dirtyTile(side);
    recomposition("dense", side, denseImage, 1.3, 2.4);
    recomposition("painted", side, paintedImage, 3.0, 3.0);
    return 0;
}
