#include "image/work/il_sp_memory_img.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>

#include "foundation/services/log.h"
#include "image/work/corner_warp_solver.h"
#include "image/work/perspective_warp_solver.h"
#include "image/work/warp_loops.h"

namespace brushwork {
namespace {

constexpr std::int32_t traceLevel = 8111;
constexpr std::int32_t quietWrapSize = 2000;

std::atomic<std::int32_t> live{0};

bool isParallelogram(const QuadCorners& p) {
    return std::abs(p[2].x - p[1].x + p[0].x - p[3].x) < 1e-9f &&
           std::abs(p[2].y - p[1].y + p[0].y - p[3].y) < 1e-9f;
}

// The nearest whole number, halves upward, within 32 bits.
std::int32_t rounded(float value) {
    const double whole = std::floor(static_cast<double>(value) + 0.5);
    if (std::isnan(whole)) return 0;
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<double>(whole, Limits::min(), Limits::max()));
}

// The whole pixels between two places of an axis; never so many that the end overflows.
void spanBetween(float from, float to, std::int32_t& start, std::int32_t& extent) {
    start = rounded(from);
    const std::int64_t length = std::int64_t{rounded(to)} - start;
    extent = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(length, 0, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

const ClassDescriptor ilSPMemoryImg::descriptor = {"SP Memory", &ilMemoryImg::descriptor};

ilSPMemoryImg::ilSPMemoryImg() {
    begin(Announce::Yes);
}

ilSPMemoryImg::ilSPMemoryImg(std::int32_t sizeX, std::int32_t sizeY, std::int32_t channels)
    : ilSPMemoryImg(sizeX, sizeY, 1, channels, TypeUChar, OrderInterleaved) {}

ilSPMemoryImg::ilSPMemoryImg(std::int32_t sizeX, std::int32_t sizeY, std::int32_t sizeZ,
                             std::int32_t channels, std::int32_t dataType, std::int32_t order)
    : ilMemoryImg(sizeX, sizeY, sizeZ, channels, dataType, order) {
    colorModel_ = ColorABGR;
    begin(Announce::Yes);
}

ilSPMemoryImg::ilSPMemoryImg(ilImage* source, Read read) : ilMemoryImg(source, read) {
    begin(Announce::Yes);
}

ilSPMemoryImg::ilSPMemoryImg(void* buffer, std::int32_t sizeX, std::int32_t sizeY,
                             std::int32_t sizeZ, std::int32_t channels, std::int32_t dataType,
                             std::int32_t order)
    : ilMemoryImg(buffer, sizeX, sizeY, sizeZ, channels, dataType, order) {
    colorModel_ = ColorABGR;
    // Wrapped buffers come and go with every page; only big ones are worth a line.
    begin(sizeX > quietWrapSize && sizeY > quietWrapSize ? Announce::Yes : Announce::No);
}

ilSPMemoryImg::~ilSPMemoryImg() {
    const std::int32_t count = --live;
    logAt(traceLevel, "Destroying ilSPMemoryImg, Count = %d\n", static_cast<int>(count));
}

void ilSPMemoryImg::begin(Announce announce) {
    // Four bytes of zero, whatever the image: what lies outside a 1-channel image isn't filled by a
    // copy, since the channel counts differ.
    fill_ = ilPixel();
    const std::int32_t count = ++live;
    if (announce == Announce::Yes)
        logAt(traceLevel, "Creating ilSPMemoryImg, Count = %d\n", static_cast<int>(count));
}

std::int32_t ilSPMemoryImg::liveCount() {
    return live;
}

const char* ilSPMemoryImg::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilSPMemoryImg::classDescriptor() const {
    return descriptor;
}

std::int32_t ilSPMemoryImg::beginKernel(std::int32_t channels) {
    if (const auto result = beginOperation()) return result;
    const bool fits = channels == 0 ? channels_ == 1 || channels_ == 4 : channels_ == channels;
    const bool interleaved = order_ == OrderInterleaved || channels_ == 1;
    return fits && interleaved && dataType_ == TypeUChar ? ImageOk : finish(ImageNotAllowed);
}

std::size_t ilSPMemoryImg::pixelCount() const {
    return static_cast<std::size_t>(sizeX_) * static_cast<std::size_t>(sizeY_);
}

std::int32_t ilSPMemoryImg::changed() {
    setAltered(NotifyOnly);
    return ImageOk;
}

void ilSPMemoryImg::setCached(std::int32_t index, std::int32_t value) {
    cachedIndex_ = index;
    cachedValue_ = value;
}

SampleSource ilSPMemoryImg::sampleSource() const {
    SampleSource source{data_, sizeX_, sizeY_, std::ptrdiff_t{sizeX_} * channels_, {}};
    const ilPixel fill = fill_.converted(TypeUChar, channels_);
    std::copy_n(fill.data(), std::size(source.fill), source.fill);
    return source;
}

ScaledTarget ilSPMemoryImg::scaledTarget() {
    if (beginKernel() != ImageOk) return {};
    return {data_, sizeX_, sizeY_, std::ptrdiff_t{sizeX_} * channels_, 0, 0};
}

std::int32_t ilSPMemoryImg::scaleRegionInto(const Rect<std::int32_t>& box,
                                            const ScaledTarget& target) {
    if (const auto result = beginKernel()) return result;
    if (!target.pixels) return finish(ImageUnusable);
    return finish(tables_.read(sampleSource(), channels_, box, target) ? ImageOk : ImageUnusable);
}

std::int32_t ilSPMemoryImg::scaleAllInto(const ScaledTarget& target) {
    if (const auto result = beginKernel()) return result;
    return scaleRegionInto({0, 0, SamplingTables::scaledSize(sizeX_, scaleX()),
                            SamplingTables::scaledSize(sizeY_, scaleY())},
                           target);
}

std::int32_t ilSPMemoryImg::scaleBoxInto(float x, float y, float w, float h, ilSPMemoryImg* dest) {
    if (const auto result = beginKernel()) return result;
    if (!dest) return finish(ImageUnusable);
    w = std::max(w, 0.0f);
    h = std::max(h, 0.0f);
    if (w * h == 0.0f) return ImageOk;
    if (const auto result = dest->beginKernel(channels_)) return finish(result);
    Rect<std::int32_t> box;
    spanBetween(x * scaleX(), (x + w) * scaleX(), box.x, box.w);
    spanBetween(y * scaleY(), (y + h) * scaleY(), box.y, box.h);
    const auto result = scaleRegionInto(box, dest->scaledTarget());
    dest->changed();
    return result;
}

std::int32_t ilSPMemoryImg::warpInto(const QuadCorners& corners, ilSPMemoryImg* target,
                                     WarpKind kind) {
    if (const auto result = beginKernel()) return result;
    const auto width = static_cast<float>(sizeX_);
    const auto height = static_cast<float>(sizeY_);
    if (kind == WarpKind::Automatic && isParallelogram(corners)) {
        const auto map = quadToSquare(corners);
        if (!map) return target ? ImageOk : finish(ImageUnusable);
        return warpThrough(PerspectiveWarpSolver(corners, width, height, *map), target);
    }
    return warpThrough(CornerWarpSolver(corners, width, height), target);
}

std::int32_t ilSPMemoryImg::warpThrough(const QuadSolver& solver, ilSPMemoryImg* target) {
    if (const auto result = beginKernel()) return result;
    if (!target || target == this) return finish(ImageUnusable);
    if (const auto result = target->beginKernel(channels_)) return finish(result);
    const ScaledTarget all = target->scaledTarget();
    const WarpTarget plane{all.pixels, all.width, all.height, all.rowBytes, 0, 0};
    const bool drawn = warpPixels(solver, sampleSource(), sampleModeX(), channels_, plane);
    target->changed();
    return finish(drawn ? ImageOk : ImageNotAllowed);
}

bool ilSPMemoryImg::scaleInto(ilSPMemoryImg* dest) {
    if (beginKernel() != ImageOk) return false;
    if (!dest || dest == this || dest->beginKernel(channels_) != ImageOk) {
        finish(ImageUnusable);
        return false;
    }
    int halvings = 0;
    while ((sizeX_ >> (halvings + 1)) > dest->sizeX_ && (sizeY_ >> (halvings + 1)) > dest->sizeY_)
        ++halvings;
    const Ref<ilSPMemoryImg> halved(
        new ilSPMemoryImg(sizeX_ >> halvings, sizeY_ >> halvings, channels_));
    const float scale = std::ldexp(1.0f, -halvings);
    setScale(scale, scale);
    setSampleModes(SampleMode::Bilinear, SampleMode::Bilinear);
    if (scaleAllInto(halved->scaledTarget()) != ImageOk) return false;
    const float rest =
        std::min(static_cast<float>(dest->sizeX_) / static_cast<float>(halved->sizeX_),
                 static_cast<float>(dest->sizeY_) / static_cast<float>(halved->sizeY_));
    halved->setSampleModes(SampleMode::Bicubic, SampleMode::Bicubic);
    halved->setScale(rest, rest);
    const auto result = finish(halved->scaleAllInto(dest->scaledTarget()));
    dest->changed();
    return result == ImageOk;
}

}  // namespace brushwork
