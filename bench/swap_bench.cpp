// Packing pages by run lengths for the swap file and unpacking them, one thread, in the three forms
// of the coder, with raw writing and reading of the same pages beside it and, if the build has it,
// lz4. Prints MB of pixels a second and how much smaller the pages become.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "foundation/services/vector_level.h"
#include "image/swap/run_length.h"
#include "image/swap/swap_file.h"

#ifdef BRUSHWORK_WITH_LZ4
#include <lz4.h>
#endif

namespace {

using namespace brushwork;

constexpr int side = 2048;
constexpr int pageSide = 128;
constexpr std::size_t pageBytes = 65536;
constexpr std::size_t pageCount = std::size_t{side} * side * 4 / pageBytes;
constexpr std::size_t warmPages = 4;

class Canvas {
  public:
    explicit Canvas(std::uint32_t pixel) : pixels_(std::size_t{side} * side, pixel) {}

    // A disc of one colour whose border takes `soft` pixels; drawn over what is there.
    void disc(float cx, float cy, float radius, float soft, std::uint32_t color, float opacity) {
        const int reach = static_cast<int>(radius + soft) + 1;
        const int x0 = static_cast<int>(cx), y0 = static_cast<int>(cy);
        for (int y = std::max(0, y0 - reach); y < std::min(side, y0 + reach + 1); ++y)
            for (int x = std::max(0, x0 - reach); x < std::min(side, x0 + reach + 1); ++x) {
                const float away =
                    std::hypot(static_cast<float>(x) - cx, static_cast<float>(y) - cy);
                const float part = std::clamp((radius + soft - away) / soft, 0.0f, 1.0f) * opacity;
                blend(pixels_[static_cast<std::size_t>(y) * side + static_cast<std::size_t>(x)],
                      color, static_cast<std::uint32_t>(part * 256.0f));
            }
    }
    // All pages, one after another.
    [[nodiscard]] std::vector<std::uint8_t> pages() const {
        std::vector<std::uint8_t> out;
        out.reserve(pageCount * pageBytes);
        for (std::size_t page = 0; page < pageCount; ++page)
            for (std::size_t row = 0; row < pageSide; ++row) {
                const std::size_t perRow = side / pageSide;
                const std::size_t at =
                    (page / perRow * pageSide + row) * side + page % perRow * pageSide;
                const auto* bytes = reinterpret_cast<const std::uint8_t*>(pixels_.data() + at);
                out.insert(out.end(), bytes, bytes + std::size_t{pageSide} * 4);
            }
        return out;
    }

  private:
    static void blend(std::uint32_t& pixel, std::uint32_t color, std::uint32_t part) {
        std::uint32_t mixed = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            const std::uint32_t below = pixel >> shift & 255, above = color >> shift & 255;
            mixed |= (below * (256 - part) + above * part) >> 8 << shift;
        }
        pixel = mixed;
    }
    std::vector<std::uint32_t> pixels_;
};

class Draws {
  public:
    float upTo(float most) {
        state_ = state_ * 1664525U + 1013904223U;
        return static_cast<float>(state_ >> 8) / 16777216.0f * most;
    }
    std::uint32_t color() { return static_cast<std::uint32_t>(upTo(16777215.0f)) | 0xFF000000U; }

  private:
    std::uint32_t state_ = 1;
};

std::vector<std::uint8_t> flatWithEdges() {
    Canvas canvas(0);
    Draws draws;
    for (int i = 0; i < 120; ++i)
        canvas.disc(draws.upTo(side), draws.upTo(side), 20 + draws.upTo(180), 1.0f, draws.color(),
                    1.0f);
    return canvas.pages();
}

// Strokes of soft stamps over an opaque canvas.
std::vector<std::uint8_t> densePaint() {
    Canvas canvas(0xFFF0F4F8U);
    Draws draws;
    for (int stroke = 0; stroke < 150; ++stroke) {
        float x = draws.upTo(side), y = draws.upTo(side);
        const float angle = draws.upTo(6.28f), radius = 8 + draws.upTo(40);
        const std::uint32_t color = draws.color();
        for (int stamp = 0; stamp < 40; ++stamp) {
            canvas.disc(x, y, radius / 2, radius / 2, color, 0.4f);
            x += std::cos(angle) * radius / 4;
            y += std::sin(angle) * radius / 4;
        }
    }
    return canvas.pages();
}

void print(const char* name, const bench::Rounds& rounds) {
    std::printf("%s\n", name);
    for (const bench::Job& job : rounds.jobs())
        std::printf("  %-24s %8.0f MB/s\n", job.name.c_str(),
                    static_cast<double>(pageCount * pageBytes) / 1e6 / job.median());
}

struct Packed {
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(pageCount * pageBytes);
    std::vector<std::size_t> sizes = std::vector<std::size_t>(pageCount);
    std::vector<std::uint8_t> planes = std::vector<std::uint8_t>(pageBytes);
    std::vector<std::uint8_t> target = std::vector<std::uint8_t>(pageCount * pageBytes);
};

void pack(const std::vector<std::uint8_t>& pages, VectorLevel level, Packed& p) {
    const RunLengthKernels& kernels = runLengthKernels(level);
    for (std::size_t i = 0; i < pageCount; ++i) {
        p.sizes[i] = kernels.encodePlanes(pages.data() + i * pageBytes, pageBytes, p.planes.data(),
                                          p.bytes.data() + i * pageBytes);
    }
}

// Into so many pages by turns. With all of them each target is one that the caches have forgotten;
// with few it is warm, as the page is that the allocator has just taken from another.
void unpack(const std::vector<std::uint8_t>& pages, VectorLevel level, Packed& p,
            std::size_t targets) {
    const RunLengthKernels& kernels = runLengthKernels(level);
    for (std::size_t i = 0; i < pageCount; ++i) {
        std::uint8_t* target = p.target.data() + i % targets * pageBytes;
        if (p.sizes[i] == pageBytes) {
            std::memcpy(target, pages.data() + i * pageBytes, pageBytes);
            continue;
        }
        kernels.decode(p.bytes.data() + i * pageBytes, p.sizes[i], p.planes.data(), pageBytes);
        kernels.joinPlanes(p.planes.data(), pageBytes / 4, target);
    }
}

#ifdef BRUSHWORK_WITH_LZ4
void addPeer(bench::Rounds& rounds, const std::vector<std::uint8_t>& pages, Packed& p) {
    const auto chars = [](auto* bytes) { return reinterpret_cast<char*>(bytes); };
    rounds.add("lz4 pack", [&pages, &p, chars] {
        for (std::size_t i = 0; i < pageCount; ++i)
            p.sizes[i] = static_cast<std::size_t>(
                LZ4_compress_default(reinterpret_cast<const char*>(pages.data() + i * pageBytes),
                                     chars(p.bytes.data() + i * pageBytes), pageBytes, pageBytes));
    });
    rounds.add("lz4 unpack", [&p, chars] {
        for (std::size_t i = 0; i < pageCount; ++i)
            if (p.sizes[i] != 0)
                LZ4_decompress_safe(chars(p.bytes.data() + i * pageBytes),
                                    chars(p.target.data() + i * pageBytes),
                                    static_cast<int>(p.sizes[i]), pageBytes);
    });
}
#endif

void coder(const char* name, const std::vector<std::uint8_t>& pages) {
    Packed p;
    bench::Rounds rounds;
    for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2}) {
        forceVectorLevel(level);
        if (vectorLevel() != level) continue;
        const std::string form = vectorLevelName(level);
        rounds.add("pack " + form, [&pages, &p, level] { pack(pages, level, p); });
        for (const std::size_t targets : {pageCount, warmPages})
            rounds.add("unpack " + form + (targets == warmPages ? ", warm" : ""),
                       [&pages, &p, level, targets] { unpack(pages, level, p, targets); });
    }
    pack(pages, vectorLevel(), p);
    unpack(pages, vectorLevel(), p, pageCount);
    if (p.target != pages) std::puts("  WRONG: pages differ after unpacking");
    double stored = 0;
    std::size_t raw = 0;
    for (const std::size_t size : p.sizes) {
        stored += static_cast<double>(size);
        raw += size == pageBytes;
    }
#ifdef BRUSHWORK_WITH_LZ4
    addPeer(rounds, pages, p);
#endif
    rounds.run(5, 40);
    print(name, rounds);
    std::printf("  %.2f times smaller, %zu of %zu pages raw\n",
                static_cast<double>(pageCount * pageBytes) / stored, raw, pageCount);
}

// The whole way into the file and back, over places that were written before.
void file(const std::vector<std::uint8_t>& pages) {
    platform::PositionedFile raw;
    const std::u16string name = swapFileName(swapDirectories().first, u"SID");
    SwapFile swap(SwapFile::fourChannels);
    if (!raw.open(name, platform::PositionedFile::Mode::CreateNew)) return;
    std::vector<std::uint8_t> target(pageBytes);
    std::vector<SwapRecord*> records(pageCount);
    bench::Rounds rounds;
    rounds.add("raw write", [&] {
        for (std::size_t at = 0; at < pages.size(); at += pageBytes)
            if (!raw.writeAt(at, pages.data() + at, pageBytes)) std::abort();
    });
    rounds.add("raw read", [&] {
        for (std::size_t at = 0; at < pages.size(); at += pageBytes)
            if (raw.readAt(at, target.data(), pageBytes) != pageBytes) std::abort();
    });
    rounds.add("swap write", [&] {
        for (SwapRecord* record : records)
            if (record) swap.free(record);
        for (std::size_t i = 0; i < pageCount; ++i)
            records[i] = swap.write(pages.data() + i * pageBytes);
    });
    rounds.add("swap read", [&] {
        for (const SwapRecord* record : records)
            if (swap.read(*record, target.data()) != pageBytes) std::abort();
    });
    rounds.run(5, 40);
    print("file, dense paint", rounds);
    raw.close();
    std::remove(std::string(name.begin(), name.end()).c_str());
}

}  // namespace

int main() {
    coder("blank", std::vector<std::uint8_t>(pageCount * pageBytes));
    coder("flat with edges", flatWithEdges());
    const std::vector<std::uint8_t> dense = densePaint();
    coder("dense paint", dense);
    file(dense);
    return 0;
}
