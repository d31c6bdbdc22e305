// Operations of the facade with random arguments, many of them wrong: what they are made of. The
// operations themselves stand by family in ops_*.cpp.
#pragma once

#include <cmath>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "brushwork/progress.h"
#include "facade/session_host.h"
#include "image/chain/il_image.h"

namespace brushwork::test {

class SessionOps {
  public:
    enum class Undo {
        Recorded,  // files a record for all that it changes
        Bare,      // changes the document without one
        Nothing,   // leaves the document as it is
    };
    struct Op {
        const char* name;
        Undo undo;
        int weight;
        std::function<void(SessionOps&)> run;
    };

    // With `wild` arguments are also far away, huge or no numbers.
    SessionOps(SessionHost& host, PaintManager& manager, std::uint32_t seed, bool wild)
        : host_(host), m(manager), random_(seed), wild_(wild) {}

    [[nodiscard]] static const std::vector<Op>& all();
    // One of them; `strict`: where every step is compared, those of negative weight don't stand.
    [[nodiscard]] const Op& pick(bool strict) {
        const auto& ops = all();
        for (;;) {
            const Op& op = ops[below(ops.size())];
            if (strict && (op.weight < 0)) continue;
            if (static_cast<int>(below(10)) < std::abs(op.weight)) return op;
        }
    }

    std::size_t below(std::size_t bound) { return bound == 0 ? 0 : random_() % bound; }
    bool chance(int percent) { return static_cast<int>(below(100)) < percent; }
    std::int32_t between(std::int32_t low, std::int32_t high) {
        return low + static_cast<std::int32_t>(below(static_cast<std::size_t>(high - low) + 1));
    }
    float unit() { return static_cast<float>(below(1001)) / 1000.0f; }
    float coordinate() {
        if (wild_ && chance(4)) return oddFloat();
        return static_cast<float>(between(-200, 2400)) / 8.0f;
    }
    float oddFloat() {
        static constexpr float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                                        std::numeric_limits<float>::infinity(),
                                        -std::numeric_limits<float>::infinity(),
                                        3e38f,
                                        -3e38f,
                                        1e9f,
                                        -2e5f,
                                        102399.0f,
                                        -0.0f,
                                        1e-40f};
        return odd[below(std::size(odd))];
    }
    float number(float low, float high) {
        if (wild_ && chance(4)) return oddFloat();
        return low + (high - low) * unit();
    }
    std::int32_t whole(std::int32_t low, std::int32_t high) {
        static constexpr std::int32_t odd[] = {std::numeric_limits<std::int32_t>::min(),
                                               std::numeric_limits<std::int32_t>::max(),
                                               -1,
                                               -2,
                                               -3,
                                               0,
                                               102400,
                                               -102400};
        if (wild_ && chance(4)) return odd[below(std::size(odd))];
        return between(low, high);
    }
    std::array<float, 4> color() {
        return {number(0, 1), number(0, 1), number(0, 1), chance(70) ? 1.0f : number(0, 1)};
    }
    ilTile box() {
        return flatTile(whole(-40, 260), whole(-40, 200), whole(-4, 200), whole(-4, 200));
    }
    // Of the current canvas, or -2, or one that is long gone, or none at all.
    std::int32_t layer() {
        const std::int32_t count = m.layerCount();
        if (count > 0 && chance(70)) return m.layerIdAt(between(1, count));
        if (chance(50)) return -2;
        if (chance(30)) return m.selectionLayerId();
        if (!seen_.empty() && chance(70)) return seen_[below(seen_.size())];
        return whole(-3, 10000);
    }
    std::vector<std::int32_t> layers() {
        std::vector<std::int32_t> ids(below(5));
        for (std::int32_t& id : ids) id = layer();
        if (chance(80)) std::erase(ids, -2);
        return ids;
    }
    std::int32_t canvas() { return chance(80) ? -2 : whole(-1, 4); }
    ImageRef picture(std::int32_t channels) {
        if (chance(5)) return {};
        ImageRef image = ImageRef::make(chance(5) ? 5 - channels : channels);
        for (int n = between(0, 4); n > 0; --n) {
            const ilTile place =
                flatTile(between(-30, 200), between(-30, 150), between(1, 90), between(1, 90));
            const std::uint32_t alpha = static_cast<std::uint32_t>(between(0, 255));
            image.fill(place, alpha << 24 | alpha);
        }
        return image;
    }
    void saw(std::int32_t id) {
        if (id >= 0) seen_.push_back(id);
    }
    void madeShape(std::int32_t id) { shapes_.push_back(id); }
    HostShape shape() {
        std::vector<PolylineCurve::Place> places;
        for (int n = between(wild_ ? 0 : 2, 6); n > 0; --n)
            places.push_back(
                {static_cast<double>(between(-40, 260)), static_cast<double>(between(-40, 200))});
        curves_.push_back(std::make_unique<PolylineCurve>(
            places, chance(50) ? PolylineCurve::Ends::Joined : PolylineCurve::Ends::Open));
        return curves_.back().get();
    }
    std::int32_t shapeId() {
        return shapes_.empty() || chance(10) ? whole(-2, 50) : shapes_[below(shapes_.size())];
    }
    StrokeInputPoint penPoint() {
        StrokeInputPoint point{coordinate(), coordinate(), number(0, 1)};
        if (wild_) point.values[below(6)] = number(-1, 1);
        return point;
    }
    void newBrush();
    void points(int most) {
        StrokeInputPoint at = penPoint();
        for (int n = between(1, most); n > 0; --n) {
            m.addPoint(at);
            if (chance(10))
                at = penPoint();
            else {
                at.x += static_cast<float>(between(-12, 12));
                at.y += static_cast<float>(between(-12, 12));
                at.pressure = number(0, 1);
            }
        }
    }
    void transformStep() {
        TransformRecord record;
        record.x = number(-60, 60);
        record.y = number(-60, 60);
        if (chance(40)) record.scaleX = number(0.3f, 1.6f);
        if (chance(40)) record.scaleY = number(-1.2f, 1.6f);
        if (chance(40)) record.rotation = number(-200, 200);
        if (chance(20)) record.corners[below(8)] = number(-20, 20);
        m.updateTransform(record);
    }

    SessionHost& host_;
    PaintManager& m;

  private:
    std::mt19937 random_;
    bool wild_;
    std::vector<std::int32_t> seen_, shapes_;
    std::deque<std::unique_ptr<PolylineCurve>> curves_;
};

[[nodiscard]] std::vector<SessionOps::Op> paintingOps();
[[nodiscard]] std::vector<SessionOps::Op> layersOps();
[[nodiscard]] std::vector<SessionOps::Op> pixelsOps();
[[nodiscard]] std::vector<SessionOps::Op> outlinesOps();
[[nodiscard]] std::vector<SessionOps::Op> canvasesOps();

}  // namespace brushwork::test
