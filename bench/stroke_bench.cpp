// Painting, beside libmypaint on its own surface (16 bits a channel on both sides, ours on two
// smart images): dabs a second at the same drawn size and distance; the recorded session from event
// to pixels; and how long one event of it takes. What two threads gain stands over what two
// canvases that are painted at once gain, which have nothing to share but the machine.
// `stroke_bench dabs`, `session` or `latency` runs one part. The session is found through
// BRUSHWORK_CORPUS.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench_clock.h"
#include "foundation/tasks/task_pool.h"
#include "image/memory/image_lock.h"
#include "image/smart/il_smart_image.h"
#include "stroke_peer.h"
#include "strokes/path/step_rule.h"
#include "strokes/stamp/stamp_key.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/stroke/stroke_renderer.h"

namespace {

using namespace brushwork;

// Others' work on the machine only ever adds to a time.
double bestOf(const bench::Rounds& rounds, std::size_t job) {
    return *std::ranges::min_element(rounds.jobs()[job].seconds);
}

constexpr float pi = 3.14159265F;
constexpr int side = 2048;
constexpr std::size_t batch = 16;  // dabs between two events

struct Place {
    float x, y;
};

// Two planes, and a renderer on them.
struct Canvas {
    Ref<ilSmartImage> high{new ilSmartImage(ilPixel(TypeUChar, 4))};
    Ref<ilSmartImage> low{new ilSmartImage(ilPixel(TypeUChar, 4))};
    npc::StrokeRenderer renderer{high.get(), low.get()};
};

// The drawn radius is the one that is asked for: a soft tip's is made larger otherwise.
BrushParameters brushOf(float radius, bool hard) {
    BrushParameters brush = BrushParameters::defaults();
    brush.color = {0.7F, 0.2F, 0.1F, 1.0F};
    brush.tipPreset = hard ? BrushParameters::hardPreset : 0;
    brush.radiusHigh = radius / npc::radiusCompensation(brush.solidShare());
    brush.mixRate0 = brush.mixRate1 = brush.mixRate2 = 0.4F;
    return brush;
}

float stepOf(float radius) {
    return nextStep(0.0F, radius, 1.0F, 0.0F);
}

// Along rows, at the distance that our step rule tells.
std::vector<Place> placesFor(float radius) {
    const auto count = static_cast<std::size_t>(
        std::clamp(6.0e6F / (radius * radius * pi + 100.0F), 2.0F * batch, 16384.0F));
    std::vector<Place> places;
    const float least = radius + 2.0F, most = static_cast<float>(side) - radius - 2.0F;
    for (float x = least, y = least; places.size() < count; x += stepOf(radius)) {
        if (x > most) {
            x = least;
            y = y + radius > most ? least : y + radius;
        }
        places.push_back({x, y + 0.1F * radius * std::sin(x)});
    }
    return places;
}

void layDabs(npc::StampRenderer& renderer, BlendModeId mode, const std::vector<Place>& places,
             float radius) {
    StampPoint point;
    point.radius = radius;
    point.opacity = 0.8F;
    point.flow = 0.9F;
    for (std::size_t n = 0; n < places.size(); ++n) {
        if (n % batch == 0) renderer.begin(mode);
        point.x = places[n].x;
        point.y = places[n].y;
        renderer.renderPoint(point);
        if (n % batch == batch - 1 || n + 1 == places.size()) renderer.end();
    }
}

// The number of workers counts when the pool starts. What a peer's threads do after their work is
// over by then.
void useThreads(int count) {
    TaskPool::instance().stop();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    if (count > 1) TaskPool::instance().start(count);
}

// Two canvases at once, with nothing to wait for: what the machine gives to a second thread.
void layDabsTwice(Canvas& canvas, Canvas& other, BlendModeId mode, const std::vector<Place>& places,
                  float radius) {
    engageImageLock(true);
    std::thread beside([&] { layDabs(*other.renderer.getStampRenderer(), mode, places, radius); });
    layDabs(*canvas.renderer.getStampRenderer(), mode, places, radius);
    beside.join();
    engageImageLock(false);
}

// How much faster a job is than another one, by the rounds in which they ran one after the other.
double gainOf(const bench::Rounds& rounds, std::size_t fast, std::size_t slow) {
    std::vector<double> ratios = rounds.jobs()[slow].seconds;
    for (std::size_t n = 0; n < ratios.size(); ++n) ratios[n] /= rounds.jobs()[fast].seconds[n];
    std::ranges::sort(ratios);
    return ratios[ratios.size() / 2];
}

void benchDabs() {
    std::printf("%-14s %31s %31s %31s %23s\n", "dabs/s (Mpx/s)", "plain, 1 thread",
                "paint, 1 thread", "libmypaint, 1 thread", "ratios, 1 thread");
    for (const float radius : {4.0F, 16.0F, 64.0F, 256.0F})
        for (const bool hard : {true, false}) {
            const std::vector<Place> places = placesFor(radius);
            const std::vector<Place> firstEvent(places.begin(), places.begin() + batch);
            const BrushParameters brush = brushOf(radius, hard);
            Canvas canvas, other;
            canvas.renderer.setParameters({}, &brush);
            other.renderer.setParameters({}, &brush);
            npc::StampRenderer& stamps = *canvas.renderer.getStampRenderer();
            bench::Rounds rounds;
            constexpr BlendModeId modes[] = {BlendModeId::Normal, BlendModeId::SolidColorPaint};
            // A host's workers have come long ago.
            const auto startThreads = [&](int threads, BlendModeId mode) {
                useThreads(threads);
                layDabs(stamps, mode, firstEvent, brush.radiusHigh);
            };
            for (const BlendModeId mode : modes)
                for (const int threads : {1, 2})
                    rounds.add(
                        "ours", [&, mode] { layDabs(stamps, mode, places, brush.radiusHigh); },
                        [&, mode, threads] { startThreads(threads, mode); });
            // Smaller stamps aren't shared.
            const bool shared = radius >= 64.0F;
            if (shared)
                for (const BlendModeId mode : modes)
                    rounds.add(
                        "ours, two canvases",
                        [&, mode] { layDabsTwice(canvas, other, mode, places, brush.radiusHigh); },
                        [&, mode] { startThreads(1, mode); });
            const std::size_t peers = rounds.jobs().size();
#ifdef BRUSHWORK_WITH_MYPAINT
            bench::StrokePeer peer(side);
            for (const int threads : {1, 2})
                rounds.add("libmypaint", [&, threads] {
                    peer.setThreaded(threads > 1);
                    for (std::size_t n = 0; n < places.size(); ++n) {
                        if (n % batch == 0) peer.beginBatch();
                        peer.dab(places[n].x, places[n].y, radius, 0.8F, hard ? 1.0F : 0.28F);
                        if (n % batch == batch - 1 || n + 1 == places.size()) peer.endBatch();
                    }
                });
#endif
            rounds.run(10, 25);
            const auto count = static_cast<double>(places.size());
            const double pixels = count * static_cast<double>(radius * radius * pi) * 1e-6;
            const auto print = [&](std::size_t job) {
                const double seconds = bestOf(rounds, job);
                std::printf(" %12.0f (%7.1f) ", count / seconds, pixels / seconds);
            };
            std::printf("r %-4g %-7s", static_cast<double>(radius), hard ? "hard" : "soft");
            print(0);
            print(2);
            const bool beside = rounds.jobs().size() > peers;
            if (beside) {
                print(peers);
                std::printf(" x %5.2f plain %5.2f paint", bestOf(rounds, peers) / bestOf(rounds, 0),
                            bestOf(rounds, peers) / bestOf(rounds, 2));
            }
            std::printf("\n%14s", "2 threads");
            print(1);
            print(3);
            if (beside) print(peers + 1);
            std::printf(" x %5.2f plain %5.2f paint gained\n", gainOf(rounds, 1, 0),
                        gainOf(rounds, 3, 2));
            if (shared)
                std::printf("%14s x %5.2f plain %5.2f paint\n", "2 canvases",
                            2.0 * gainOf(rounds, 4, 0), 2.0 * gainOf(rounds, 5, 2));
        }
}

struct Event {
    float x, y, pressure;
    double seconds;  // since the event before
};
using Pen = std::vector<std::vector<Event>>;  // strokes

Pen readPen() {
    Pen pen;
    const char* corpus = std::getenv("BRUSHWORK_CORPUS");
    if (!corpus) return pen;
    std::ifstream file(std::filesystem::path(corpus) / "pen-events" / "painting30sec.dat");
    double time = 0.0, before = 0.0;
    float x = 0.0F, y = 0.0F, pressure = 0.0F;
    bool down = false;
    for (; file >> time >> x >> y >> pressure; before = time) {
        if (pressure > 0.0F && !down) pen.emplace_back();
        down = pressure > 0.0F;
        if (down) pen.back().push_back({x, y, pressure, time - before});
    }
    return pen;
}

struct Medium {
    const char* name;
    npc::BrushKind kind;
    bool hard, smudges, picture = false;
};
constexpr Medium media[] = {{"hard", npc::BrushKind{}, true, false},
                            {"soft", npc::BrushKind{}, false, false},
                            {"marker", npc::BrushKind::Marker, false, false},
                            {"smudge", npc::BrushKind::SmudgeCanvas, false, true},
                            {"pastel", npc::BrushKind::Pastel, false, true},
                            {"picture tip", npc::BrushKind{}, true, false, true}};

// A tip of noise, in shape and in colour.
Ref<ImagePaintObj> noise(std::int32_t channels) {
    const auto image = makeRef<ilSPMemoryImg>(512, 512, channels);
    std::uint32_t state = 1;
    for (std::size_t n = 0; n < image->byteSize(); ++n) {
        state = state * 1664525U + 1013904223U;
        image->data()[n] = static_cast<std::uint8_t>(state >> 24);
    }
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
}

void setMedium(Canvas& canvas, const Medium& medium, float radius) {
    BrushParameters brush = brushOf(radius, medium.hard);
    StrokeParameters stroke;
    if (medium.picture) {
        brush.proceduralTip = false;
        brush.shapeObject = noise(1);
        brush.colorObject = noise(4);
        stroke.followDirection = true;  // a stamp of its own almost everywhere
    }
    stroke.interpolationKind = 0;  // as the peer's path runs
    stroke.brushKind = static_cast<std::int32_t>(medium.kind);
    // At the density of the drawn size.
    stroke.spacing = stepOf(radius) / stepOf(brush.radiusHigh);
    canvas.renderer.setParameters(stroke, &brush);
}

using Microseconds = std::vector<double>;

// One replay; with `times` it is noted what each event took.
void paint(Canvas& canvas, const Pen& pen, Microseconds* times) {
    const float radius = canvas.renderer.getStampRenderer()->parameters().radiusHigh;
    StampPoint point;
    point.radius = radius;
    for (const auto& events : pen) {
        canvas.renderer.beginStroke(false);
        for (const Event& event : events) {
            const auto start = std::chrono::steady_clock::now();
            point.x = event.x;
            point.y = event.y;
            point.opacity = 0.8F * event.pressure;
            canvas.renderer.addPoint(point);
            const std::chrono::duration<double, std::micro> took =
                std::chrono::steady_clock::now() - start;
            if (times) times->push_back(took.count());
        }
        canvas.renderer.endStroke();
    }
}

#ifdef BRUSHWORK_WITH_MYPAINT
void paint(bench::StrokePeer& peer, const Pen& pen, Microseconds* times) {
    for (const auto& events : pen) {
        peer.beginStroke(events[0].x, events[0].y);
        for (const Event& event : events) {
            const auto start = std::chrono::steady_clock::now();
            peer.event(event.x, event.y, event.pressure, std::max(event.seconds, 1e-4));
            const std::chrono::duration<double, std::micro> took =
                std::chrono::steady_clock::now() - start;
            if (times) times->push_back(took.count());
        }
    }
}

void setMedium(bench::StrokePeer& peer, const Medium& medium, float radius) {
    peer.setBrush(
        medium.smudges ? bench::StrokePeer::Medium::Smudge : bench::StrokePeer::Medium::Round,
        radius, medium.hard ? 1.0F : 0.28F, radius / stepOf(radius));
}
#endif

void benchSession(const Pen& pen) {
    std::printf("\nthe session, ms\n%-18s %10s %10s %10s %10s %10s %12s\n", "", "ours 1t",
                "ours 2t", "peer 1t", "ours dabs", "peer dabs", "peer / ours");
    for (const Medium& medium : {media[0], media[1]})
        for (const float radius : {4.0F, 16.0F, 64.0F}) {
            Canvas canvas;
            setMedium(canvas, medium, radius);
            long dabs = 0;
            canvas.renderer.setTileCallback([&dabs](const ilTile&) { ++dabs; });
            bench::Rounds rounds;
            for (const int threads : {1, 2})
                rounds.add(
                    "ours",
                    [&] {
                        dabs = 0;
                        paint(canvas, pen, nullptr);
                    },
                    [threads] { useThreads(threads); });
            long peerDabs = 0;
#ifdef BRUSHWORK_WITH_MYPAINT
            bench::StrokePeer peer(1024);
            setMedium(peer, medium, radius);
            rounds.add("libmypaint", [&] {
                bench::StrokePeer::dabCount() = 0;
                paint(peer, pen, nullptr);
                peerDabs = bench::StrokePeer::dabCount();
            });
#endif
            rounds.run(5, 20);
            const bool beside = rounds.jobs().size() > 2;
            std::printf("r %-4g %-11s %10.2f %10.2f %10.2f %10ld %10ld %12.2f\n",
                        static_cast<double>(radius), medium.name, bestOf(rounds, 0) * 1e3,
                        bestOf(rounds, 1) * 1e3, beside ? bestOf(rounds, 2) * 1e3 : 0.0, dabs,
                        peerDabs, beside ? bestOf(rounds, 2) / bestOf(rounds, 0) : 0.0);
        }
}

// The part-th of all times.
double quantile(Microseconds times, double part) {
    const auto place = static_cast<std::ptrdiff_t>(part * static_cast<double>(times.size() - 1));
    std::nth_element(times.begin(), times.begin() + place, times.end());
    return times[static_cast<std::size_t>(place)];
}

struct Latency {
    double median, p99, longest;
};

// The calmest of some replays, after one that doesn't count.
template <class Painter>
Latency latencyOf(Painter& painter, const Pen& pen) {
    paint(painter, pen, nullptr);
    Latency least{1e9, 1e9, 1e9};
    for (int replay = 0; replay < 7; ++replay) {
        Microseconds times;
        paint(painter, pen, &times);
        const Latency now{quantile(times, 0.5), quantile(times, 0.99), quantile(times, 1.0)};
        if (now.p99 < least.p99) least = now;
    }
    return least;
}

void benchLatency(const Pen& pen) {
    std::printf("\nfrom addPoint to finished pixels, us: median, 99th percentile, longest\n");
    std::printf("%-18s %29s %29s\n", "", "ours", "libmypaint");
    for (const float radius : {16.0F, 256.0F})
        for (const Medium& medium : media) {
            useThreads(2);
            Canvas canvas;
            setMedium(canvas, medium, radius);
            const Latency ours = latencyOf(canvas, pen);
            std::printf("r %-4g %-11s %9.1f %9.1f %9.1f", static_cast<double>(radius), medium.name,
                        ours.median, ours.p99, ours.longest);
#ifdef BRUSHWORK_WITH_MYPAINT
            bench::StrokePeer peer(1024);
            setMedium(peer, medium, radius);
            const Latency theirs = latencyOf(peer, pen);
            std::printf(" %9.1f %9.1f %9.1f", theirs.median, theirs.p99, theirs.longest);
#endif
            std::printf("\n");
        }
}

}  // namespace

int main(int argc, char** argv) {
    const auto wanted = [&](const char* part) {
        return argc < 2 || std::strcmp(argv[1], part) == 0;
    };
    if (wanted("dabs")) benchDabs();
    const Pen pen = readPen();
    if (pen.empty()) {
        std::printf("no BRUSHWORK_CORPUS: the recorded session is left out\n");
        return 0;
    }
    if (wanted("session")) benchSession(pen);
    if (wanted("latency")) benchLatency(pen);
    return 0;
}
