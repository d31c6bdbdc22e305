#include "document/layer/placed_copy.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <numbers>
#include <vector>

#include "document/layer/view_levels.h"
#include "image/smart/smart_alpha.h"
#include "image/work/corner_warp_solver.h"
#include "image/work/warp_loops.h"

namespace brushwork {
namespace {

constexpr std::int32_t cellSide = 128;                      // pages of the target
constexpr std::int64_t mostPixels = std::int64_t{1} << 22;  // of the source, read for one part
constexpr double imageLimit = 102400.0;
constexpr double leastScale = 1e-5;

struct PlanePoint {
    double x, y;
};

// First `a`, then `b`.
ProjectiveMap joined(const ProjectiveMap& a, const ProjectiveMap& b) {
    ProjectiveMap m;
    m.a = a.a * b.a + a.b * b.d + a.c * b.g;
    m.b = a.a * b.b + a.b * b.e + a.c * b.h;
    m.c = a.a * b.c + a.b * b.f + a.c * b.i;
    m.d = a.d * b.a + a.e * b.d + a.f * b.g;
    m.e = a.d * b.b + a.e * b.e + a.f * b.h;
    m.f = a.d * b.c + a.e * b.f + a.f * b.i;
    m.g = a.g * b.a + a.h * b.d + a.i * b.g;
    m.h = a.g * b.b + a.h * b.e + a.i * b.h;
    m.i = a.g * b.c + a.h * b.f + a.i * b.i;
    return m;
}

ProjectiveMap scaledBy(double x, double y) {
    ProjectiveMap m;
    m.a = x;
    m.e = y;
    return m;
}

ProjectiveMap movedBy(double x, double y) {
    ProjectiveMap m;
    m.g = x;
    m.h = y;
    return m;
}

// Quarter turns are exact: no pixel is to be softened by one.
ProjectiveMap turnedBy(double degrees) {
    const double turn = std::remainder(degrees, 360.0);
    ProjectiveMap m;
    if (std::fmod(turn, 90.0) == 0.0) {
        const auto quarter = static_cast<int>(std::lround(turn / 90.0)) & 3;
        constexpr std::array<double, 4> cosines{1.0, 0.0, -1.0, 0.0};
        m.a = m.e = cosines[static_cast<std::size_t>(quarter)];
        m.b = cosines[static_cast<std::size_t>((quarter + 3) & 3)];
    } else {
        const double angle = turn * std::numbers::pi / 180.0;
        m.a = m.e = std::cos(angle);
        m.b = std::sin(angle);
    }
    m.d = -m.b;
    return m;
}

std::optional<ProjectiveMap> inverse(const ProjectiveMap& m) {
    ProjectiveMap back;
    back.a = m.e * m.i - m.f * m.h;
    back.b = m.c * m.h - m.b * m.i;
    back.c = m.b * m.f - m.c * m.e;
    back.d = m.f * m.g - m.d * m.i;
    back.e = m.a * m.i - m.c * m.g;
    back.f = m.c * m.d - m.a * m.f;
    back.g = m.d * m.h - m.e * m.g;
    back.h = m.b * m.g - m.a * m.h;
    back.i = m.a * m.e - m.b * m.d;
    const double determinant = m.c * back.g + m.f * back.h + m.i * back.i;
    if (!std::isfinite(determinant) || determinant == 0.0) return std::nullopt;
    for (double* entry :
         {&back.a, &back.b, &back.c, &back.d, &back.e, &back.f, &back.g, &back.h, &back.i})
        *entry /= determinant;
    return back;
}

double depthAt(const ProjectiveMap& m, double x, double y) {
    return x * m.c + y * m.f + m.i;
}

PlanePoint apply(const ProjectiveMap& m, double x, double y) {
    const double w = depthAt(m, x, y);
    return {(m.a * x + m.d * y + m.g) / w, (m.b * x + m.e * y + m.h) / w};
}

bool isStraight(const ProjectiveMap& m) {
    return m.c == 0.0 && m.f == 0.0;
}

std::array<PlanePoint, 4> cornersOf(const ilTile& box) {
    const double x = box.x, y = box.y, right = box.endX(), top = box.endY();
    return {{{x, y}, {right, y}, {right, top}, {x, top}}};
}

ilTile grown(const ilTile& box, std::int32_t margin) {
    return flatTile(box.x - margin, box.y - margin, box.nx + 2 * margin, box.ny + 2 * margin);
}

// How far beyond its edge a pixel can be seen.
std::int32_t reachOf(SampleMode mode) {
    return mode == SampleMode::Nearest ? 0 : mode == SampleMode::Bilinear ? 1 : 2;
}

// Whole pixels around points; cut to what an image can hold.
class PointBox {
  public:
    void add(const PlanePoint& p) {
        left_ = std::min(left_, p.x);
        bottom_ = std::min(bottom_, p.y);
        right_ = std::max(right_, p.x);
        top_ = std::max(top_, p.y);
    }
    [[nodiscard]] ilTile box() const {
        // A corner that is whole but for rounding adds no row of pixels.
        constexpr double nearly = 1e-6;
        const auto floor = [](double value) {
            return static_cast<std::int32_t>(
                std::floor(std::clamp(value + nearly, -imageLimit, imageLimit)));
        };
        const auto ceil = [](double value) {
            return static_cast<std::int32_t>(
                std::ceil(std::clamp(value - nearly, -imageLimit, imageLimit)));
        };
        const std::int32_t x = floor(left_), y = floor(bottom_);
        return flatTile(x, y, ceil(right_) - x, ceil(top_) - y);
    }

  private:
    double left_ = 1e30, bottom_ = 1e30, right_ = -1e30, top_ = -1e30;
};

ilTile boxOf(const QuadCorners& corners) {
    PointBox points;
    for (const QuadPoint& corner : corners)
        points.add({static_cast<double>(corner.x), static_cast<double>(corner.y)});
    return points.box();
}

// Nothing if the box reaches the horizon.
std::optional<ilTile> mappedBox(const ProjectiveMap& map, const ilTile& box) {
    constexpr double leastDepth = 1e-3;
    PointBox points;
    for (const PlanePoint& corner : cornersOf(box)) {
        if (!(depthAt(map, corner.x, corner.y) > leastDepth)) return std::nullopt;
        points.add(apply(map, corner.x, corner.y));
    }
    return points.box();
}

// Draws one placed copy, part by part.
class PlacedDrawing {
  public:
    PlacedDrawing(ilSmartImage& source, const Placing& placing, SampleMode mode,
                  const ilTile& target)
        : source_(source),
          placing_(placing),
          mode_(mode),
          target_(target),
          fill_(source.fill()),
          channels_(source.channels()),
          image_(new ilSmartImage(fill_)) {}

    [[nodiscard]] Ref<ilSmartImage> run() {
        image_->setTrackAlpha(source_.trackAlpha());
        if (placing_.content.isEmpty() || target_.isEmpty()) return image_;
        for (std::int32_t y = 0; y < target_.ny; y += cellSide) {
            for (std::int32_t x = 0; x < target_.nx; x += cellSide) {
                const ilTile cell = intersection(
                    flatTile(target_.x + x, target_.y + y, cellSide, cellSide), target_);
                if (!draw(cell)) return {};
            }
        }
        return image_;
    }

  private:
    // What of the source the part may show. `whole` tells whether nothing was cut off.
    [[nodiscard]] ilTile sourceBox(const ilTile& part, bool& whole) const {
        const ilTile most = grown(placing_.content, reachOf(mode_) + 1);
        whole = false;
        if (placing_.folded) return most;
        const std::optional<ilTile> mapped = mappedBox(placing_.back, part);
        if (!mapped) return most;
        const ilTile wanted = grown(*mapped, reachOf(mode_) + 1);
        whole = most.contains(wanted);
        return intersection(wanted, most);
    }

    [[nodiscard]] ilTile inImage(const ilTile& part) const {
        return flatTile(part.x - target_.x, part.y - target_.y, part.nx, part.ny);
    }

    [[nodiscard]] bool draw(const ilTile& part) {
        bool whole = false;
        const ilTile box = sourceBox(part, whole);
        if (box.isEmpty()) return true;
        std::uint32_t value = 0;
        if (source_.isSolid(box, value, false)) {
            const ilPixel pixel(TypeUChar, channels_, &value);
            if (pixel == fill_) return true;
            if (whole) return image_->fillRegion(inImage(part), pixel) == ImageOk;
        }
        const bool divisible = !placing_.folded && (part.nx > 1 || part.ny > 1);
        if (divisible && std::int64_t{box.nx} * box.ny > mostPixels) return drawHalves(part);
        return sample(part, box);
    }

    [[nodiscard]] bool drawHalves(ilTile part) {
        ilTile rest = part;
        if (part.nx > part.ny) {
            part.nx /= 2;
            rest.x += part.nx;
            rest.nx -= part.nx;
        } else {
            part.ny /= 2;
            rest.y += part.ny;
            rest.ny -= part.ny;
        }
        return draw(part) && draw(rest);
    }

    [[nodiscard]] bool sample(const ilTile& part, const ilTile& box) {
        if (!read(box)) return false;
        SampleSource source{pixels_.data(), box.nx, box.ny, std::ptrdiff_t{box.nx} * channels_, {}};
        std::copy_n(fill_.data(), channels_, source.fill);
        const std::size_t bytes = static_cast<std::size_t>(channels_) *
                                  static_cast<std::size_t>(part.nx) *
                                  static_cast<std::size_t>(part.ny);
        out_.resize(bytes);
        for (std::size_t at = 0; at < bytes; at += static_cast<std::size_t>(channels_))
            std::copy_n(fill_.data(), channels_, out_.data() + at);
        const WarpTarget target{out_.data(), part.nx, part.ny, std::ptrdiff_t{part.nx} * channels_,
                                part.x,      part.y};
        if (!warp(source, box, target)) return false;
        if (mode_ == SampleMode::Bicubic && channels_ == 4)
            SmartAlpha::cut(out_.data(), out_.size() / 4);
        const ilTile place = inImage(part);
        return image_->writeRegion(place, out_.data(), place) == ImageOk;
    }

    // A folded quad reads the same box for every part.
    [[nodiscard]] bool read(const ilTile& box) {
        if (box == readBox_) return true;
        readBox_ = {};
        pixels_.resize(static_cast<std::size_t>(channels_) * static_cast<std::size_t>(box.nx) *
                       static_cast<std::size_t>(box.ny));
        const std::int32_t result = source_.readRegion(box, pixels_.data(), box);
        if (result != ImageOk && result != ImageClipped) return false;
        readBox_ = box;
        return true;
    }

    [[nodiscard]] bool warp(const SampleSource& source, const ilTile& box,
                            const WarpTarget& target) const {
        const auto width = static_cast<float>(box.nx), height = static_cast<float>(box.ny);
        if (placing_.folded) {
            // The corners are the content's; around it the box holds a rim of fill.
            const std::int32_t rim = reachOf(mode_) + 1;
            SampleSource inner = source;
            inner.pixels += std::ptrdiff_t{rim} * (source.rowBytes + channels_);
            inner.width -= 2 * rim;
            inner.height -= 2 * rim;
            const CornerWarpSolver solver(placing_.corners, static_cast<float>(inner.width),
                                          static_cast<float>(inner.height));
            return warpPixels(solver, inner, mode_, channels_, target);
        }
        const ProjectiveMap map =
            joined(joined(placing_.back, movedBy(-box.x, -box.y)),
                   scaledBy(1.0 / static_cast<double>(box.nx), 1.0 / static_cast<double>(box.ny)));
        const PerspectiveWarpSolver solver({}, width, height, map);
        return warpPixels(solver, source, mode_, channels_, target);
    }

    ilSmartImage& source_;
    const Placing& placing_;
    SampleMode mode_;
    ilTile target_;
    ilPixel fill_;
    std::int32_t channels_;
    Ref<ilSmartImage> image_;
    std::vector<std::uint8_t> pixels_, out_;
    ilTile readBox_;
};

Ref<ilSmartImage> drawn(ilSmartImage& source, const Placing& placing, SampleMode mode,
                        const ilTile& target) {
    const bool reduces = mode != SampleMode::Nearest && isStraight(placing.forward);
    const std::int32_t block = reduces ? reducingBlock(mostScale(placing)) : 1;
    if (block == 1) return PlacedDrawing(source, placing, mode, target).run();
    const Ref<ilSmartImage> level = reducedCopy(source, block);
    if (!level) return {};
    return PlacedDrawing(*level, placingOfLevel(placing, *level, block), mode, target).run();
}

bool isFinite(const TransformRecord& record) {
    const std::array<float, 7> values{record.x,        record.y,      record.scaleX, record.scaleY,
                                      record.rotation, record.pivotX, record.pivotY};
    const auto finite = [](float value) { return std::isfinite(value); };
    return std::all_of(values.begin(), values.end(), finite) &&
           std::all_of(record.corners.begin(), record.corners.end(), finite);
}

}  // namespace

std::optional<Placing> placingByRecord(const TransformRecord& record, const ilTile& content,
                                       double sourceX, double sourceY) {
    const auto scaleX = static_cast<double>(record.scaleX);
    const auto scaleY = static_cast<double>(record.scaleY);
    if (!isFinite(record) || std::fabs(scaleX) < leastScale || std::fabs(scaleY) < leastScale)
        return std::nullopt;
    const auto pivotX = static_cast<double>(record.pivotX);
    const auto pivotY = static_cast<double>(record.pivotY);
    ProjectiveMap map =
        joined(movedBy(sourceX - pivotX, sourceY - pivotY), scaledBy(scaleX, scaleY));
    map = joined(map, turnedBy(static_cast<double>(record.rotation)));
    map.g += pivotX + static_cast<double>(record.x);
    map.h += pivotY + static_cast<double>(record.y);
    if (record.movesCorners()) {
        QuadCorners corners;
        const std::array<PlanePoint, 4> box = cornersOf(content);
        for (std::size_t k = 0; k < 4; ++k) {
            const PlanePoint p = apply(map, box[k].x, box[k].y);
            corners[k] = {static_cast<float>(p.x) + record.corners[2 * k],
                          static_cast<float>(p.y) + record.corners[2 * k + 1]};
        }
        return placingByCorners(corners, content);
    }
    const std::optional<ProjectiveMap> back = inverse(map);
    if (!back) return std::nullopt;
    return Placing{content, map, *back, false, {}};
}

std::optional<Placing> placingByCorners(const QuadCorners& corners, const ilTile& content) {
    if (content.isEmpty()) return std::nullopt;
    double area = 0.0;
    for (std::size_t k = 0; k < 4; ++k) {
        const QuadPoint& p = corners[k];
        const QuadPoint& q = corners[(k + 1) & 3];
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::nullopt;
        area += static_cast<double>(p.x) * static_cast<double>(q.y) -
                static_cast<double>(q.x) * static_cast<double>(p.y);
    }
    if (std::fabs(area) < 1e-3) return std::nullopt;
    constexpr double leastDepth = 1e-3;
    const std::optional<ProjectiveMap> square = squareToQuad(corners);
    if (square && 1.0 + square->c > leastDepth && 1.0 + square->f > leastDepth &&
        1.0 + square->c + square->f > leastDepth) {
        const ProjectiveMap unit = joined(
            movedBy(-content.x, -content.y),
            scaledBy(1.0 / static_cast<double>(content.nx), 1.0 / static_cast<double>(content.ny)));
        const ProjectiveMap forward = joined(unit, *square);
        if (std::optional<ProjectiveMap> back = inverse(forward)) {
            // Depth 1 at the first corner: the solver's least depth is an absolute one.
            const double depth = depthAt(*back, static_cast<double>(corners[0].x),
                                         static_cast<double>(corners[0].y));
            for (double* entry : {&back->a, &back->b, &back->c, &back->d, &back->e, &back->f,
                                  &back->g, &back->h, &back->i})
                *entry /= depth;
            return Placing{content, forward, *back, false, {}};
        }
    }
    return Placing{content, {}, {}, true, corners};
}

Placing placingOf(const Placing& placing, const ilTile& content) {
    Placing other = placing;
    if (!placing.folded && isStraight(placing.forward)) other.content = content;
    return other;
}

Placing placingOfLevel(const Placing& placing, ilSmartImage& level, std::int32_t block) {
    Placing reduced = placing;
    level.bounds(reduced.content);
    reduced.forward = joined(scaledBy(block, block), placing.forward);
    reduced.back = joined(placing.back, scaledBy(1.0 / block, 1.0 / block));
    return reduced;
}

float mostScale(const Placing& placing) {
    if (placing.folded) return 1.0f;
    const ProjectiveMap& m = placing.forward;
    double most = 0.0;
    for (const PlanePoint& corner : cornersOf(placing.content)) {
        const double w = depthAt(m, corner.x, corner.y);
        const PlanePoint p = apply(m, corner.x, corner.y);
        most = std::max({most, std::hypot(m.a - p.x * m.c, m.b - p.y * m.c) / w,
                         std::hypot(m.d - p.x * m.f, m.e - p.y * m.f) / w});
    }
    return static_cast<float>(most);
}

ilTile placedBox(const Placing& placing, SampleMode mode) {
    if (placing.content.isEmpty()) return {0, 0, 0, 0, 0, 1};
    if (placing.folded) return boxOf(placing.corners);
    if (const auto box = mappedBox(placing.forward, grown(placing.content, reachOf(mode))))
        return *box;
    if (const auto box = mappedBox(placing.forward, placing.content)) return *box;
    return {0, 0, 0, 0, 0, 1};
}

Ref<ilSmartImage> placedCopy(ilSmartImage& source, const Placing& placing, SampleMode mode,
                             const ilTile& target) {
    try {
        return drawn(source, placing, mode, target);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace brushwork
