// What a page costs: to be had from a warm manager, to be tested for one colour, to leave memory
// and to come back; one thread, with malloc and memcpy beside it. Prints time a page, and for the
// tests GB of pixels a second.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "foundation/services/vector_level.h"
#include "image/cache/page_kernels.h"
#include "image/cache/smart_image_cache.h"
#include "image/memory/memory_manager.h"

namespace {

using namespace brushwork;

constexpr std::size_t pageBytes = 65536;
constexpr std::size_t words = pageBytes / 4;

// What is read here can't be left out by the compiler.
volatile std::uint32_t sink;

void print(const char* title, const bench::Rounds& rounds, std::size_t pages, bool bandwidth) {
    std::printf("%s\n", title);
    for (const bench::Job& job : rounds.jobs()) {
        const double nanoseconds = job.median() * 1e9 / static_cast<double>(pages);
        std::printf("  %-44s %10.1f ns a page", job.name.c_str(), nanoseconds);
        if (bandwidth) std::printf(" %7.1f GB/s", static_cast<double>(pageBytes) / nanoseconds);
        std::puts("");
    }
}

using Take = std::function<void*()>;
using Give = std::function<void(void*)>;

// In turn: one page, given back at once. In heaps: 100 pages, then all of them back. Touched: one
// byte of each 4096 is written, so that a page fault shows.
template <class TakeOne, class GiveOne>
void addTaking(bench::Rounds& rounds, const std::string& name, std::size_t pages, TakeOne take,
               GiveOne give) {
    rounds.add(name + ", in turn", [=] {
        for (std::size_t i = 0; i < pages; ++i) {
            void* const page = take();
            *static_cast<volatile std::uint8_t*>(page) = 1;
            give(page);
        }
    });
    rounds.add(name + ", in heaps", [=] {
        void* heap[100];
        for (std::size_t i = 0; i < pages; i += 100) {
            for (void*& page : heap) page = take();
            for (void* page : heap) give(page);
        }
    });
    rounds.add(name + ", in heaps, touched", [=] {
        void* heap[100];
        for (std::size_t i = 0; i < pages; i += 100) {
            for (void*& page : heap) {
                page = take();
                for (std::size_t at = 0; at < pageBytes; at += 4096)
                    static_cast<volatile std::uint8_t*>(page)[at] = 1;
            }
            for (void* page : heap) give(page);
        }
    });
}

void taking() {
    constexpr std::size_t pages = 20000;
    BworkMemory& memory = BworkMemory::instance();
    SmartImageCache& cache = SmartImageCache::instance();
    std::vector<std::uint8_t> from(pageBytes, 1), to(pageBytes);
    SmartPage* const page = makeSmartPage(4, 0);
    bench::Rounds rounds;
    addTaking(
        rounds, "manager", pages, [&memory] { return memory.allocateBig(true); },
        [&memory](void* taken) { memory.releaseBig(taken); });
    addTaking(
        rounds, "malloc", pages, [] { return std::malloc(pageBytes); },
        [](void* taken) { std::free(taken); });
    rounds.add("cache: page made, memory, all released", [&cache] {
        for (std::size_t i = 0; i < pages; ++i) {
            SmartPage* const made = makeSmartPage(4, 0);
            if (!cache.allocatePage(*made)) std::abort();
            cache.releasePage(*made);
            destroySmartPage(made);
        }
    });
    rounds.add("cache: touch", [&cache, page] {
        for (std::size_t i = 0; i < pages; ++i) cache.touch(*page);
    });
    rounds.add("memcpy, hot", [&] {
        for (std::size_t i = 0; i < pages / 10; ++i) {
            std::memcpy(to.data(), from.data(), pageBytes);
            sink = to[i % pageBytes];
        }
    });
    rounds.run(5, 20);
    print("taking and giving back (memcpy: ten times that)", rounds, pages, false);
    destroySmartPage(page);
}

// Uniform pages, read to their end: in the processor's cache, and more of them than it holds.
void testing(const char* title, std::size_t pages) {
    std::vector<std::uint32_t> pixels(pages * words, 0xFFFFFFFFU);
    bench::Rounds rounds;
    const auto each = [&](auto&& test) {
        for (std::size_t i = 0; i < pages; ++i)
            if (!test(pixels.data() + i * words)) std::abort();
    };
    for (const VectorLevel level : {VectorLevel::Scalar, VectorLevel::Sse2, VectorLevel::Avx2}) {
        forceVectorLevel(level);
        if (vectorLevel() != level) continue;
        const PageKernels& kernels = pageKernels(level);
        const std::string form = vectorLevelName(level);
        rounds.add("uniform, words, " + form, [&each, &kernels] {
            each([&](const std::uint32_t* page) { return kernels.uniform32(page, words); });
        });
        rounds.add("uniform, bytes, " + form, [&each, &kernels] {
            each([&](const std::uint32_t* page) {
                return kernels.uniform8(reinterpret_cast<const std::uint8_t*>(page), pageBytes);
            });
        });
        rounds.add("opaque, " + form, [&each, &kernels] {
            each([&](const std::uint32_t* page) { return kernels.alphaIs(page, words, 255); });
        });
    }
    // A search that reads all and finds nothing: the C library's own bandwidth.
    rounds.add("memchr", [&each] {
        each([](const std::uint32_t* page) { return !std::memchr(page, 1, pageBytes); });
    });
    rounds.run(5, 20);
    print(title, rounds, pages, true);
}

// 256 painted pages out and in again through the file.
void leaving() {
    constexpr std::size_t count = 256;
    SmartImageCache& cache = SmartImageCache::instance();
    BworkMemory& memory = BworkMemory::instance();
    std::vector<SmartPage*> pages;
    for (std::size_t i = 0; i < count; ++i) {
        SmartPage& page = *pages.emplace_back(makeSmartPage(4, 0));
        if (!cache.allocatePage(page)) std::abort();
        auto* const pixels = reinterpret_cast<std::uint32_t*>(page.data);
        for (std::size_t at = 0; at < words; ++at)  // runs of some pixels, no page like another
            pixels[at] = static_cast<std::uint32_t>((at / 24 + i) * 2654435761U) | 0xFF000000U;
    }
    const auto drop = [&] {
        for (SmartPage* page : pages) cache.dropSwapRecord(*page);
    };
    const auto out = [&] {
        for (std::size_t i = 0; i < count; ++i) memory.releaseBig(cache.evictForBig());
    };
    const auto in = [&] {
        for (SmartPage* page : pages)
            if (!cache.pageIn(*page)) std::abort();
    };
    bench::Rounds rounds;
    rounds.add("out, packed and written; in, read again", [&] {
        drop();
        out();
        in();
    });
    rounds.add("out, unchanged; in, read again", [&] {
        out();
        in();
    });
    std::vector<std::uint8_t> copy(pageBytes);
    rounds.add("memcpy, one painted page after another", [&] {
        for (const SmartPage* page : pages) {
            std::memcpy(copy.data(), page->data, pageBytes);
            sink = copy[7];
        }
    });
    rounds.run(5, 20);
    print("leaving and coming back", rounds, count, false);
    for (SmartPage* page : pages) {
        cache.releasePage(*page);
        destroySmartPage(page);
    }
}

void collapsing() {
    constexpr std::size_t count = 256;
    SmartImageCache& cache = SmartImageCache::instance();
    std::vector<SmartPage*> pages(count);
    for (SmartPage*& page : pages) page = makeSmartPage(4, 0);
    bench::Rounds rounds;
    rounds.add("filled, scanned, solid again", [&] {
        for (SmartPage* page : pages) {
            if (!cache.allocatePage(*page)) std::abort();
            std::memset(page->data, 0x7F, pageBytes);
            cache.addScan(*page);
        }
        while (cache.idleStep()) {
        }
    });
    rounds.add("memset alone", [&] {
        std::vector<std::uint8_t> bytes(pageBytes);
        for (std::size_t i = 0; i < count; ++i) {
            std::memset(bytes.data(), static_cast<int>(i), pageBytes);
            sink = bytes[i];
        }
    });
    rounds.run(5, 20);
    print("collapsing", rounds, count, false);
    for (SmartPage* page : pages) {
        cache.releasePage(*page);
        destroySmartPage(page);
    }
}

}  // namespace

int main() {
    BworkMemory::instance().enable(true);
    if (!BworkMemory::instance().isEnabled()) return 1;
    taking();
    testing("testing one page over and over", 1);
    testing("testing 256 MiB of pages", 4096);
    leaving();
    collapsing();
    return 0;
}
