#include "tools/digests.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace brushwork::tools {
namespace {

constexpr std::int32_t current = -2;
constexpr std::int32_t cell = 64;  // pixels a side

std::int32_t cellStart(std::int32_t place) {
    return place >= 0 ? place / cell * cell : -((-place + cell - 1) / cell * cell);
}

// The image is cut along a grid of its coordinates, and cells of the value that fills it outside of
// its box are left out: that makes the digest the same however tight the box is.
void addImage(DigestSum& sum, const ImageRef& image) {
    const std::int32_t channels = image.channels();
    sum.add(std::int64_t{channels});
    const ilTile box = image.bounds();
    const auto bytes = static_cast<std::size_t>(cell * cell * channels);
    std::vector<std::uint8_t> outside(bytes), pixels(bytes);
    const std::int32_t left = cellStart(box.x), bottom = cellStart(box.y);
    if (!image.read(flatTile(left - 8 * cell, bottom - 8 * cell, cell, cell), outside.data()))
        std::fill(outside.begin(), outside.end(), std::uint8_t{0});
    sum.add(outside.data(), static_cast<std::size_t>(channels));
    if (box.isEmpty()) return;
    for (std::int32_t y = bottom; y < box.endY(); y += cell)
        for (std::int32_t x = left; x < box.endX(); x += cell) {
            if (!image.read(flatTile(x, y, cell, cell), pixels.data())) continue;
            if (pixels == outside) continue;
            sum.add(std::int64_t{x});
            sum.add(std::int64_t{y});
            sum.add(pixels.data(), bytes);
        }
}

std::string layerDigest(const PaintManager& paint, std::int32_t id) {
    DigestSum sum;
    for (const ImageRef& image : {paint.layerImage(id), paint.layerStencil(id)})
        if (image) addImage(sum, image);
    float x = 0.0f, y = 0.0f;
    // Layers stand on whole pixels; undo knows of nothing finer.
    if (paint.position(id, &x, &y)) {
        sum.add(static_cast<std::int64_t>(x));
        sum.add(static_cast<std::int64_t>(y));
    }
    sum.add(paint.layerName(id).toUtf8());
    sum.add(paint.opacity(id));
    sum.add(std::int64_t{paint.blendMode(id)});
    sum.add(std::int64_t{paint.labelColor(id)});
    for (const bool flag :
         {paint.isVisible(id), paint.isLocked(id), paint.isEnabled(id), paint.isGroup(id),
          paint.isMask(id), paint.isStencil(id), paint.isShapeLayer(id)})
        sum.add(std::int64_t{flag});
    return sum.text();
}

std::string pictureDigest(const std::vector<std::uint8_t>& pixels) {
    DigestSum sum;
    sum.add(pixels.data(), pixels.size());
    return sum.text();
}

}  // namespace

// Eight bytes at a time; the count goes in, too, so that zeros at the end make a difference.
void DigestSum::add(const void* bytes, std::size_t count) {
    constexpr std::uint64_t prime = 0x100000001b3u;
    const auto* from = static_cast<const unsigned char*>(bytes);
    std::size_t n = 0;
    for (; n + 8 <= count; n += 8) {
        std::uint64_t word;
        std::memcpy(&word, from + n, 8);
        sum_ = (sum_ ^ word) * prime;
        sum_ ^= sum_ >> 32;
    }
    for (; n < count; ++n) sum_ = (sum_ ^ from[n]) * prime;
    sum_ = (sum_ ^ count) * prime;
}

void DigestSum::add(std::int64_t number) {
    add(&number, sizeof number);
}

void DigestSum::add(float number) {
    add(&number, sizeof number);
}

void DigestSum::add(std::string_view text) {
    add(text.data(), text.size());
}

std::string DigestSum::text() const {
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(sum_));
    return digits;
}

std::string digestOf(const ImageRef& image) {
    if (!image) return "-";
    DigestSum sum;
    addImage(sum, image);
    return sum.text();
}

std::string digestOfPicture(PaintManager& paint, std::int32_t canvas) {
    const ilTile box = paint.canvasBounds(canvas);
    std::vector<std::uint8_t> pixels(std::size_t{4} * static_cast<std::size_t>(box.nx) *
                                     static_cast<std::size_t>(box.ny));
    if (pixels.empty() || !paint.readFlatImage(canvas, pixels.data())) return "-";
    return pictureDigest(pixels);
}

DocumentDigest digestDocument(PaintManager& paint) {
    DocumentDigest result;
    if (!paint.hasCanvas(current)) return result;
    const ilTile box = paint.canvasBounds(current);
    DigestSum document;
    document.add(std::int64_t{box.nx});
    document.add(std::int64_t{box.ny});
    for (const float component : paint.background()) document.add(component);
    const std::int32_t count = paint.layerCount();
    for (std::int32_t index = 1; index <= count; ++index) {
        const std::int32_t id = paint.layerIdAt(index);
        LayerDigest layer{id, paint.groupDepth(id), paint.layerName(id).toUtf8(),
                          layerDigest(paint, id)};
        document.add(std::int64_t{layer.depth});
        document.add(layer.digest);
        if (id == paint.activeLayerId()) document.add("active");
        result.layers.push_back(std::move(layer));
    }
    result.selection = paint.hasSelection() ? digestOf(paint.selectionImage()) : "-";
    document.add(result.selection);

    std::vector<std::uint8_t> pixels(std::size_t{4} * static_cast<std::size_t>(box.nx) *
                                     static_cast<std::size_t>(box.ny));
    if (paint.readCanvas(current, pixels.data())) result.display = pictureDigest(pixels);
    if (paint.readFlatImage(current, pixels.data())) document.add(pictureDigest(pixels));
    result.document = document.text();
    return result;
}

}  // namespace brushwork::tools
