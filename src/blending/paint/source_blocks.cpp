#include "blending/paint/source_blocks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "image/smart/il_smart_image.h"
#include "image/work/il_const_img.h"
#include "image/work/il_memory_img.h"

namespace brushwork {
namespace {

// Smart images have pixels up to here.
constexpr std::int32_t smartLimit = 102400;

bool isWithinLimit(const ilTile& box) {
    return box.x >= -smartLimit && box.y >= -smartLimit && box.endX() <= smartLimit &&
           box.endY() <= smartLimit;
}

// Nobody has pixels further out.
std::int32_t floorOf(double value) {
    constexpr double most = 1 << 30;
    return static_cast<std::int32_t>(std::clamp(std::floor(value), -most, most));
}

std::int32_t clampTo(std::int32_t value, std::int32_t first, std::int32_t count) {
    return std::clamp(value, first, first + count - 1);
}

bool resize(std::vector<std::uint8_t>& bytes, std::size_t size) {
    try {
        bytes.resize(size);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

}  // namespace

bool SourceBlocks::wrapMemory() {
    const PaintFormat& format = setup_.format;
    const std::int32_t channels = format.channels > 0 ? format.channels : setup_.targetChannels;
    const std::size_t pixelBytes =
        dataTypeInfo(format.type).bytes * static_cast<std::size_t>(channels);
    if (pixelBytes == 0) return false;
    const std::size_t rowBytes =
        setup_.rows != 0 ? setup_.rows : pixelBytes * static_cast<std::size_t>(setup_.memoryWidth);
    const std::size_t perRow = rowBytes / pixelBytes;
    if (rowBytes % pixelBytes != 0 || perRow > 1U << 30 ||
        perRow < static_cast<std::size_t>(setup_.memoryWidth)) {
        return false;
    }
    // Only read from.
    image_ = Ref<ilImage>(new ilMemoryImg(const_cast<void*>(setup_.source.pixels),
                                          static_cast<std::int32_t>(perRow), setup_.memoryHeight, 1,
                                          channels, format.type, OrderInterleaved));
    if (image_->status() == ImageOk) return true;
    image_.reset();
    return false;
}

bool SourceBlocks::begin(const Setup& setup) {
    setup_ = setup;
    image_ = Ref<ilImage>(setup.source.image);
    if (!image_ && !wrapMemory()) return false;
    channels_ = image_->channels();
    mapped_ = !setup_.format.isIdentity();
    if (mapped_) {
        const std::int32_t has = channels_;
        channels_ = setup_.targetChannels;
        const auto isBeyond = [&](std::int32_t entry) { return entry < 0 || entry >= has; };
        for (std::int32_t i = 0; i < 4; ++i) {
            const std::int32_t entry = setup_.format.map[static_cast<std::size_t>(i)];
            list_[static_cast<std::size_t>(i)] = isBeyond(entry) ? -1 : entry;
        }
    }
    if (channels_ != 1 && channels_ != 4) return false;
    if (image_->dataType() == TypeBit) return false;
    findDirect();
    return true;
}

void SourceBlocks::findDirect() {
    direct_ = nullptr;
    if (mapped_ || !setup_.x.isPlain() || !setup_.y.isPlain() || !setup_.scaleBias.isNeutral())
        return;
    if (image_->isKindOf(ilMemoryImg::descriptor) == 0 || image_->dataType() != TypeUChar) return;
    if (image_->coordSpace() != setup_.coordSpace) return;
    if (channels_ > 1 && image_->order() != OrderInterleaved) return;
    direct_ = static_cast<ilMemoryImg*>(image_.get())->data();
}

// Only what a look at page records tells.
bool SourceBlocks::findConstant(const ilTile& box) {
    if (mapped_ || !setup_.scaleBias.isNeutral()) return false;
    std::uint32_t word = 0;
    ilSmartImage* const smart = ilSmartImage::from(image_.get());
    if (smart) {
        if (smart->coordSpace() != setup_.coordSpace || !isWithinLimit(box)) return false;
        if (!smart->isSolid(box, word, false)) return false;
        for (std::size_t i = 0; i < 4; ++i) constant_[i] = static_cast<std::uint8_t>(word >> 8 * i);
        return true;
    }
    if (image_->isKindOf(ilConstImg::descriptor) == 0) return false;
    const ilImageConfig config(TypeUChar, OrderInterleaved, channels_);
    const ilTile one = flatTile(box.x, box.y, 1, 1);
    return image_->readRegion(one, constant_.data(), one, &config) == ImageOk;
}

bool SourceBlocks::read(const ilTile& box, std::vector<std::uint8_t>& pixels) {
    constexpr std::uint64_t mostBytes = 1U << 30;
    const auto bytes = static_cast<std::uint64_t>(box.nx) * static_cast<std::uint64_t>(box.ny) *
                       static_cast<std::uint64_t>(channels_);
    if (bytes > mostBytes || !resize(pixels, static_cast<std::size_t>(bytes))) return false;
    ilImageConfig config(TypeUChar, OrderInterleaved, channels_);
    config.coordSpace = setup_.coordSpace;
    if (mapped_) {
        std::fill(pixels.begin(), pixels.end(), std::uint8_t{0});
        config.channelList = list_.data();
    }
    const std::int32_t result = image_->readRegion(box, pixels.data(), box, &config);
    return result == ImageOk || result == ImageClipped;
}

SourceBlock SourceBlocks::block(const ilTile& box) {
    const auto channels = static_cast<std::size_t>(channels_);
    const std::size_t rowBytes = channels * static_cast<std::size_t>(box.nx);
    if (!setup_.x.isPlain() || !setup_.y.isPlain()) {
        if (!stretched(box)) return {};
        scaleBytes(pixels_.data(), pixels_.size());
        return {pixels_.data(), rowBytes, false};
    }
    ilTile there = box;
    there.x = floorOf(setup_.x.at(box.x));
    there.y = floorOf(setup_.y.at(box.y));
    if (direct_ && image_->box().contains(there)) {
        const std::size_t stride = channels * static_cast<std::size_t>(image_->sizeX());
        return {direct_ + static_cast<std::size_t>(there.y) * stride +
                    static_cast<std::size_t>(there.x) * channels,
                stride, false};
    }
    if (findConstant(there)) return {constant_.data(), 0, true};
    if (!read(there, pixels_)) return {};
    scaleBytes(pixels_.data(), pixels_.size());
    return {pixels_.data(), rowBytes, false};
}

// Places are those of the whole target, so that blocks fit together.
bool SourceBlocks::stretched(const ilTile& box) {
    const SourceAxis& ax = setup_.x;
    const SourceAxis& ay = setup_.y;
    const double shift = setup_.nearest ? 0.0 : 0.5;
    const auto firstOf = [&](const SourceAxis& axis, std::int32_t place) {
        return clampTo(floorOf(axis.at(place) - shift), axis.origin, axis.extent);
    };
    const auto lastOf = [&](const SourceAxis& axis, std::int32_t place) {
        return clampTo(floorOf(axis.at(place) - shift) + (setup_.nearest ? 0 : 1), axis.origin,
                       axis.extent);
    };
    const std::int32_t x0 = firstOf(ax, box.x), x1 = lastOf(ax, box.endX() - 1);
    const std::int32_t y0 = firstOf(ay, box.y), y1 = lastOf(ay, box.endY() - 1);
    const ilTile there = flatTile(x0, y0, x1 - x0 + 1, y1 - y0 + 1);
    if (!read(there, raw_)) return false;
    const auto channels = static_cast<std::size_t>(channels_);
    const auto width = static_cast<std::size_t>(box.nx);
    if (!resize(pixels_, width * static_cast<std::size_t>(box.ny) * channels)) return false;
    std::uint8_t* out = pixels_.data();
    const auto pixel = [&](std::int32_t x, std::int32_t y) {
        return raw_.data() +
               (static_cast<std::size_t>(y - y0) * static_cast<std::size_t>(there.nx) +
                static_cast<std::size_t>(x - x0)) *
                   channels;
    };
    for (std::int32_t y = box.y; y < box.endY(); ++y) {
        const double v = ay.at(y) - shift;
        const std::int32_t low = firstOf(ay, y), high = lastOf(ay, y);
        const auto fy = static_cast<std::uint32_t>((v - std::floor(v)) * 256.0);
        for (std::int32_t x = box.x; x < box.endX(); ++x, out += channels) {
            const std::int32_t left = firstOf(ax, x), right = lastOf(ax, x);
            if (setup_.nearest) {
                std::memcpy(out, pixel(left, low), channels);
                continue;
            }
            const double u = ax.at(x) - shift;
            const auto fx = static_cast<std::uint32_t>((u - std::floor(u)) * 256.0);
            const std::uint8_t* const a = pixel(left, low);
            const std::uint8_t* const b = pixel(right, low);
            const std::uint8_t* const c = pixel(left, high);
            const std::uint8_t* const d = pixel(right, high);
            for (std::size_t n = 0; n < channels; ++n) {
                const std::uint32_t below = a[n] * (256 - fx) + b[n] * fx;
                const std::uint32_t above = c[n] * (256 - fx) + d[n] * fx;
                out[n] = static_cast<std::uint8_t>((below * (256 - fy) + above * fy + 32768) >> 16);
            }
        }
    }
    return true;
}

void SourceBlocks::scaleBytes(std::uint8_t* pixels, std::size_t count) const {
    if (setup_.scaleBias.isNeutral()) return;
    const auto channels = static_cast<std::size_t>(channels_);
    std::array<std::array<std::uint8_t, 256>, 4> tables;
    for (std::size_t c = 0; c < channels; ++c) {
        const float scale = setup_.scaleBias.scale[c];
        const float bias = setup_.scaleBias.bias[c] * 255.0F;
        for (std::size_t i = 0; i < 256; ++i) {
            const float value = static_cast<float>(i) * scale + bias;
            // Not-a-number becomes 0.
            tables[c][i] = value >= 255.0F ? std::uint8_t{255}
                           : value > 0.0F  ? static_cast<std::uint8_t>(value)
                                           : std::uint8_t{0};
        }
    }
    for (std::size_t i = 0; i < count; ++i) pixels[i] = tables[i % channels][pixels[i]];
}

}  // namespace brushwork
