// Pages of smart images, one thread, with the memory manager on: the copy-on-write step beside a
// memcpy of one page, look-ups and pixel reads through the remembered slot, look-ups all over a
// table, and walks over resident pages. Counts the page faults of the step.
#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "bench_clock.h"
#include "brushwork/ref.h"
#include "image/cache/smart_image_cache.h"
#include "image/memory/image_lock.h"
#include "image/memory/memory_manager.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_accessor.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_walk.h"
#include "image/smart/smart_page_table.h"

namespace {

using namespace brushwork;

constexpr std::int32_t pagesAcross = 64;
constexpr std::size_t pageCount = std::size_t{pagesAcross} * pagesAcross;  // 256 MiB
constexpr std::int32_t side = pagesAcross * pageSide;
constexpr std::size_t copies = 256;

void require(bool holds) {
    if (holds) return;
    std::puts("WRONG");
    std::exit(1);
}

void fillTable(SmartPageTable& table) {
    PageWalk walk(table, flatTile(0, 0, side, side), PageWalk::Create::Yes);
    std::uint32_t value = 1;
    while (walk.next()) {
        require(walk.realize(RealizeMode::Overwrite));
        auto* const words = reinterpret_cast<std::uint32_t*>(walk.slot()->data);
        for (std::int32_t i = 0; i < pagePixels; ++i) words[i] = value = value * 1664525U + 1;
    }
    table.extendBounds(flatTile(0, 0, side, side));
}

void print(const char* name, double seconds, double count) {
    std::printf("  %-40s %10.1f ns\n", name, seconds / count * 1e9);
}

// Copies into as many buffers as the step does, so that both meet the same cache lines.
struct Copies {
    explicit Copies(SmartPageTable& table) {
        table.eachPage([this](std::int32_t, std::int32_t, SmartPageRef& slot) {
            if (shared.size() < copies) shared.push_back(slot);
        });
        for (std::size_t n = 0; n < copies; ++n)
            targets.push_back(BworkMemory::instance().allocateBig(true));
    }
    void step() {
        std::vector<SmartPageRef> writers = shared;
        for (SmartPageRef& writer : writers) require(realizePage(writer, RealizeMode::Write));
    }
    void stepOneByOne() {
        for (const SmartPageRef& page : shared) {
            SmartPageRef writer = page;
            require(realizePage(writer, RealizeMode::Write));
        }
    }
    void plain() {
        for (std::size_t n = 0; n < copies; ++n)
            std::memcpy(targets[n], shared[n]->data, shared[n]->bytes());
    }
    void plainIntoOne() {
        for (const SmartPageRef& page : shared) std::memcpy(targets[0], page->data, page->bytes());
    }
    std::vector<SmartPageRef> shared;
    std::vector<void*> targets;
};

long pageFaults() {
    struct rusage usage {};
    return getrusage(RUSAGE_SELF, &usage) == 0 ? usage.ru_minflt + usage.ru_majflt : -1;
}

void benchCopies(SmartPageTable& table) {
    Copies work(table);
    bench::Rounds rounds;
    const std::size_t step = rounds.add("", [&] { work.step(); });
    const std::size_t plain = rounds.add("", [&] { work.plain(); });
    const std::size_t stepHot = rounds.add("", [&] { work.stepOneByOne(); });
    const std::size_t plainHot = rounds.add("", [&] { work.plainIntoOne(); });
    rounds.run(10, 200);
    const long before = pageFaults();
    for (int round = 0; round < 10; ++round) work.step();
    const long faults = pageFaults() - before;
    std::puts("copy-on-write, pages of 65536 bytes");
    print("step, 256 clones held", rounds.median(step), copies);
    print("memcpy into 256 buffers", rounds.median(plain), copies);
    print("step, clone dropped at once", rounds.median(stepHot), copies);
    print("memcpy into one buffer", rounds.median(plainHot), copies);
    std::printf("  step / memcpy %.2f held, %.2f dropped\n",
                rounds.median(step) / rounds.median(plain),
                rounds.median(stepHot) / rounds.median(plainHot));
    std::printf("  page faults in %d steps of a warm manager: %ld\n", static_cast<int>(10 * copies),
                faults);
}

void benchLookUps(ilSmartImage& image) {
    SmartPageTable& table = image.pages();
    std::vector<std::int32_t> places(2 * 65536);
    std::mt19937 random(1);
    for (std::int32_t& place : places) place = static_cast<std::int32_t>(random() % side);
    volatile std::uint32_t sink = 0;
    bench::Rounds rounds;
    const std::size_t run = rounds.add("", [&] {
        std::uint32_t sum = 0;
        for (std::int32_t y = 0; y < side; y += pageSide / 2)
            for (std::int32_t x = 0; x < side; ++x) sum += image.getPixel(x, y);
        sink = sum;
    });
    const std::size_t unlocked = rounds.add("", [&] {
        engageImageLock(false);
        std::uint32_t sum = 0;
        for (std::int32_t y = 0; y < side; y += pageSide / 2)
            for (std::int32_t x = 0; x < side; ++x) sum += image.getPixel(x, y);
        sink = sum;
        engageImageLock(true);
    });
    const std::size_t random1 = rounds.add("", [&] {
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i < places.size(); i += 2)
            sum += table.pageRef(places[i] & pageMask, places[i + 1] & pageMask, false) != nullptr;
        sink = sum;
    });
    const std::size_t read = rounds.add("", [&] {
        for (std::int32_t i = 0; i < 65536; ++i)
            require(realizePage(*table.pageRef(0, 0, false), RealizeMode::Read));
    });
    rounds.run(10, 100);
    std::puts("look-ups");
    print("getPixel along rows, lock off", rounds.median(unlocked),
          double{side} * side / (pageSide / 2));
    print("getPixel along rows, lock on", rounds.median(run), double{side} * side / (pageSide / 2));
    print("pageRef at random places", rounds.median(random1), 65536);
    print("pageRef and realize of the same page", rounds.median(read), 65536);
}

void benchWalks(SmartPageTable& table) {
    const ilTile box = flatTile(0, 0, side, side);
    std::vector<std::uint8_t> rows(static_cast<std::size_t>(side) * 4 * pageSide);
    std::vector<const std::uint8_t*> pages;
    table.eachPage([&](std::int32_t, std::int32_t, SmartPageRef& s) { pages.push_back(s->data); });
    bench::Rounds rounds;
    const std::size_t walk = rounds.add("", [&] {
        PageWalk pass(table, box, PageWalk::Create::No, PageWalk::Order::Swap);
        while (pass.next()) require(pass.realize(RealizeMode::Read));
    });
    const std::size_t read = rounds.add("", [&] {
        PageWalk pass(table, box, PageWalk::Create::No, PageWalk::Order::Swap);
        PageAccessor accessor;
        while (pass.next()) {
            require(pass.realize(RealizeMode::Read));
            const ilTile frame = flatTile(0, pass.y(), side, pageSide);
            require(accessor.open(*pass.slot(), pass.x(), pass.y(), PageAccessor::View::Read));
            require(accessor.read(pass.tile(), rows.data(), frame, nullptr) == ImageOk);
        }
    });
    const std::size_t plain = rounds.add("", [&] {
        const std::size_t rowBytes = static_cast<std::size_t>(side) * 4;
        for (std::size_t n = 0; n < pageCount; ++n)
            for (std::size_t y = 0; y < pageSide; ++y)
                std::memcpy(rows.data() + y * rowBytes + n % pagesAcross * pageSide * 4,
                            pages[n] + y * pageSide * 4, pageSide * 4);
    });
    rounds.run(5, 40);
    std::puts("walks over 4096 resident pages, a page");
    print("walk and realize", rounds.median(walk), pageCount);
    print("walk, realize and read through accessor", rounds.median(read), pageCount);
    print("memcpy of the rows of the same pages", rounds.median(plain), pageCount);
}

}  // namespace

int main() {
    BworkMemory::instance().enable(true);
    const Ref<ilSmartImage> image(new ilSmartImage(ilPixel(TypeUChar, 4)));
    fillTable(image->pages());
    require(SmartImageCache::instance().counts().big == static_cast<int>(pageCount));
    benchCopies(image->pages());
    benchLookUps(*image);
    benchWalks(image->pages());
    return 0;
}
