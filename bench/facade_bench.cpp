// The facade: what undo costs, and a recorded pen session painted through it on a document of ten
// layers. `facade_bench records` or `session` runs one part. The session is found through
// BRUSHWORK_CORPUS.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "brushwork/paint_manager.h"
#include "brushwork/pnt_undo_database.h"
#include "facade/undo_filing.h"
#include "foundation/tasks/task_pool.h"
#include "image/cache/smart_image_cache.h"

namespace {

using namespace brushwork;
using Clock = std::chrono::steady_clock;

double microsecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

template <class Work>
double microsecondsOf(const Work& work) {
    const auto start = Clock::now();
    work();
    return microsecondsSince(start);
}

struct Spread {
    double median, p99, longest;
};

Spread spreadOf(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    const auto at = [&](double part) {
        return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
    };
    return {at(0.5), at(0.99), at(1.0)};
}

void print(const char* name, const std::vector<double>& times) {
    const Spread spread = spreadOf(times);
    std::printf("  %-34s %10.2f %10.2f %10.2f\n", name, spread.median, spread.p99, spread.longest);
}

// Of the process, in MiB.
double residentPeak() {
    std::ifstream file("/proc/self/status");
    for (std::string word; file >> word;)
        if (double kib = 0.0; word == "VmHWM:" && file >> kib) return kib / 1024.0;
    return 0.0;
}

struct Random {
    std::uint32_t state = 1;
    std::uint32_t next() {
        state = state * 1664525U + 1013904223U;
        return state >> 8;
    }
    float below(float end) { return end * static_cast<float>(next() & 0xffff) / 65536.0F; }
};

BrushParameters brushOf(float radius) {
    BrushParameters brush = BrushParameters::defaults();
    brush.radiusLow = 1.0F;
    brush.radiusHigh = radius;
    return brush;
}

// A curved stroke of 30 points about a place.
void paintStroke(PaintManager& manager, Random& random, float side) {
    manager.setColor({random.below(1), random.below(1), random.below(1), 1.0F});
    const float x = random.below(side), y = random.below(side), angle = random.below(6.28F);
    manager.beginStroke();
    for (int n = 0; n < 30; ++n) {
        const float way = static_cast<float>(n) * 8.0F;
        manager.addPoint({x + way * std::cos(angle), y + way * std::sin(angle + way * 0.005F),
                          0.3F + 0.02F * static_cast<float>(n)});
    }
    manager.endStroke();
}

std::size_t pagesOf(const PntUndoStroke& record) {
    return record.newColor()->pages().heldPages() + record.newStencil()->pages().heldPages();
}

// Pages of 128 x 128 that a box of the layer meets.
std::size_t pagesUnder(const ilTile& box) {
    constexpr std::int32_t page = 128;
    const auto across = [](std::int32_t from, std::int32_t to) {
        return static_cast<std::size_t>((to - 1 + 65536 * page) / page -
                                        (from + 65536 * page) / page + 1);
    };
    return box.isEmpty() ? 0 : across(box.x, box.endX()) * across(box.y, box.endY());
}

// Records alone, on layers that are painted all over.
void benchMaking() {
    std::printf("\nmaking and filing a stroke record, us: median, 99th percentile, longest\n");
    for (const std::int32_t side : {1024, 4096, 16384}) {
        PntUndoDatabase undo;
        setUndoDatabase(&undo);
        PaintManager manager;
        manager.newCanvas(side, side);
        manager.newLayer();
        manager.lockUndo(true);
        Random random;
        for (int n = 0; n < 200; ++n) paintStroke(manager, random, static_cast<float>(side));
        manager.fillLayer({0.2F, 0.4F, 0.6F, 1.0F});
        manager.lockUndo(false);
        const std::uint64_t before = SmartImageCache::instance().counts().usedBytes;
        std::vector<double> times;
        std::size_t pages = 0, bytes = 0;
        for (int n = 0; n < 200; ++n) {
            Ref<PntUndoStroke> record;
            times.push_back(
                microsecondsOf([&] { record = recordLayer(manager.state(), -2, -2, true); }));
            pages += pagesOf(*record);
            bytes = record->objectSize();
        }
        const std::string name = std::to_string(side) + " x " + std::to_string(side);
        print(name.c_str(), times);
        std::printf("  %34s %zu pages in 200 records, %llu bytes of pages more, %zu a record\n", "",
                    pages,
                    static_cast<unsigned long long>(SmartImageCache::instance().counts().usedBytes -
                                                    before),
                    bytes);
        setUndoDatabase(nullptr);
    }
}

// A thousand strokes: what their records hold, and what taking them back and doing them again
// takes, with the canvas shown each time and without.
void benchStrokes() {
    constexpr std::int32_t side = 4096;
    constexpr int strokes = 1000;
    PntUndoDatabase undo;
    setUndoDatabase(&undo);
    PaintManager manager;
    manager.newCanvas(side, side);
    for (int n = 0; n < 3; ++n) {
        manager.newLayer();
        manager.fillLayer({0.3F, 0.1F * static_cast<float>(n), 0.5F, 0.7F});
    }
    manager.setBrush(brushOf(20.0F), StrokeParameters());
    manager.clearUndo();
    manager.present(-2);
    const std::uint64_t before = SmartImageCache::instance().counts().usedBytes;
    Random random;
    std::size_t touched = 0;
    for (int n = 0; n < strokes; ++n) {
        paintStroke(manager, random, side - 300.0F);
        touched += pagesUnder(manager.strokeBounds());
    }
    std::vector<Ref<PntUndoOper>> records(undo.records().begin(), undo.records().end());
    const std::uint64_t bytes = SmartImageCache::instance().counts().usedBytes - before;
    std::printf(
        "\n%d strokes on %d x %d: %llu pages more, %.1f MiB, of %zu under the strokes' boxes\n",
        strokes, side, side, static_cast<unsigned long long>(bytes >> 16),
        static_cast<double>(bytes) / 1048576.0, touched);
    std::printf("us: median, 99th percentile, longest\n");
    for (const bool shown : {false, true}) {
        std::vector<double> undoTimes, redoTimes;
        bool deferred = false;
        const auto timed = [&](std::vector<double>& times, const auto& step) {
            times.push_back(microsecondsOf([&] {
                step();
                if (shown) manager.present(-2);
            }));
        };
        const std::size_t count = shown ? 60 : records.size();
        for (std::size_t n = records.size(); n > records.size() - count; --n)
            timed(undoTimes, [&] { records[n - 1]->undo(&deferred); });
        for (std::size_t n = records.size() - count; n < records.size(); ++n)
            timed(redoTimes, [&] { records[n]->redo(&deferred); });
        print(shown ? "undo, canvas shown" : "undo", undoTimes);
        print(shown ? "redo, canvas shown" : "redo", redoTimes);
    }
    std::vector<double> times;
    while (undo.count() > 0) times.push_back(microsecondsOf([&] { undo.retireOldest(); }));
    print("archiving the oldest", times);
    setUndoDatabase(nullptr);
}

struct Event {
    float x, y, pressure;
};
using Pen = std::vector<std::vector<Event>>;  // strokes

Pen readPen() {
    Pen pen;
    const char* corpus = std::getenv("BRUSHWORK_CORPUS");
    if (!corpus) return pen;
    std::ifstream file(std::filesystem::path(corpus) / "pen-events" / "painting30sec.dat");
    double time = 0.0;
    Event event{};
    bool down = false;
    while (file >> time >> event.x >> event.y >> event.pressure) {
        if (event.pressure > 0.0F && !down) pen.emplace_back();
        down = event.pressure > 0.0F;
        if (down) pen.back().push_back(event);
    }
    return pen;
}

// Ten layers, painted all over or in places, in several modes; the sixth is the active one.
void makeDocument(PaintManager& manager, std::int32_t side) {
    manager.newCanvas(side, side);
    Random random;
    std::vector<std::int32_t> ids;
    for (int n = 0; n < 10; ++n) {
        ids.push_back(manager.newLayer());
        if (n % 2 == 0) manager.fillLayer({random.below(1), random.below(1), 0.5F, 0.4F});
        for (int stroke = 0; stroke < 100; ++stroke)
            paintStroke(manager, random, static_cast<float>(side));
        manager.setOpacity(ids.back(), 0.9F);
        if (n % 3 == 2) manager.setBlendMode(ids.back(), n);
    }
    manager.setActiveLayer(ids[5]);
    manager.clearUndo();
    manager.present(-2);
}

void benchSession(const Pen& pen, float radius, int kind, const char* name) {
    constexpr std::int32_t side = 2048;
    PntUndoDatabase undo;
    setUndoDatabase(&undo);
    PaintManager manager;
    manager.setBrush(brushOf(20.0F), StrokeParameters());
    makeDocument(manager, side);
    StrokeParameters stroke;
    stroke.brushKind = kind;
    manager.setBrush(brushOf(radius), stroke);
    std::vector<double> points, begins, ends;
    double total = 1e9;
    for (int replay = 0; replay < 4; ++replay) {
        // The first one fills caches; the calmest of the others counts.
        std::vector<double> each, first, last;
        const auto start = Clock::now();
        for (const auto& events : pen) {
            first.push_back(microsecondsOf([&] { manager.beginStroke(); }));
            for (const Event& event : events)
                each.push_back(microsecondsOf([&] {
                    manager.addPoint({event.x, event.y, event.pressure});
                }));
            last.push_back(microsecondsOf([&] { manager.endStroke(); }));
        }
        const double took = microsecondsSince(start);
        manager.clearUndo();
        if (replay == 0 || took >= total) continue;
        total = took;
        points = each;
        begins = first;
        ends = last;
    }
    std::printf("\n%s, radius %g: %zu events of %zu strokes in %.1f ms, %.0f events/s\n", name,
                static_cast<double>(radius), points.size(), pen.size(), total / 1000.0,
                static_cast<double>(points.size()) / total * 1e6);
    print("addPoint", points);
    print("beginStroke", begins);
    print("endStroke", ends);
    setUndoDatabase(nullptr);
}

}  // namespace

int main(int argc, char** argv) {
    const auto wanted = [&](const char* part) {
        return argc < 2 || std::strcmp(argv[1], part) == 0;
    };
    TaskPool::instance().start(2);
    if (wanted("records")) {
        benchStrokes();
        benchMaking();
    }
    if (wanted("session")) {
        const Pen pen = readPen();
        if (pen.empty()) std::printf("no BRUSHWORK_CORPUS: the recorded session is left out\n");
        if (!pen.empty()) {
            std::printf(
                "\nthe session on 2048 x 2048 with ten layers, us: median, 99th "
                "percentile, longest\n");
            for (const float radius : {4.0F, 16.0F, 64.0F}) benchSession(pen, radius, 0, "paint");
            benchSession(pen, 16.0F, 1, "marker");
            benchSession(pen, 16.0F, 2, "smudge");
            std::printf("\npeak memory %.1f MiB\n", residentPeak());
        }
    }
    TaskPool::instance().stop();
    return 0;
}
