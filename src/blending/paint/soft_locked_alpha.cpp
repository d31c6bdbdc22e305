#include "blending/paint/soft_locked_alpha.h"

#include <cstddef>
#include <utility>

namespace brushwork {
namespace {

// A word a pixel.
Ref<ilMemoryImg> copyOf(ilImage& image, const ilTile& stretch) {
    Ref<ilMemoryImg> copy(
        new ilMemoryImg(stretch.nx, stretch.ny, 1, 4, TypeUChar, OrderInterleaved));
    if (!copy->data()) return {};
    const ilImageConfig config(TypeUChar, OrderInterleaved, 4);
    const std::int32_t result = image.readRegion(stretch, copy->data(), stretch, &config);
    if (result != ImageOk && result != ImageClipped) return {};
    return copy;
}

bool writeBack(ilImage& image, const ilTile& stretch, const ilMemoryImg& pixels) {
    const ilImageConfig config(TypeUChar, OrderInterleaved, 4);
    return image.writeRegion(stretch, pixels.data(), stretch, &config) == ImageOk;
}

void giveBack(std::uint8_t* high, std::uint8_t* low, const std::uint8_t* keptHigh,
              const std::uint8_t* keptLow) {
    const std::uint32_t c = std::uint32_t{high[3]} << 8 | (low ? low[3] : 0U);
    if (c == 0) return;
    const std::uint32_t s = std::uint32_t{keptHigh[3]} << 8 | (keptLow ? keptLow[3] : 0U);
    const std::uint32_t k = (s * 65536U) / c;
    for (int n = 0; n < 3; ++n) {
        const std::uint32_t v = std::uint32_t{high[n]} << 8 | (low ? low[n] : 0U);
        const std::uint32_t fitted = (v * k) >> 16;
        high[n] = static_cast<std::uint8_t>(fitted >> 8);
        if (low) low[n] = static_cast<std::uint8_t>(fitted);
    }
    high[3] = static_cast<std::uint8_t>(s >> 8);
    if (low) low[3] = static_cast<std::uint8_t>(s);
}

}  // namespace

bool SoftLockedAlpha::save(ilImage& target, ilImage* low, const ilTile& stretch) {
    high_.reset();
    low_.reset();
    if (stretch.isEmpty() || target.channels() != 4) return false;
    Ref<ilMemoryImg> high = copyOf(target, stretch);
    if (!high) return false;
    if (low) {
        low_ = copyOf(*low, stretch);
        if (!low_) return false;
    }
    stretch_ = stretch;
    high_ = high;
    return true;
}

bool SoftLockedAlpha::restore(ilImage& target, ilImage* low) {
    const Ref<ilMemoryImg> keptHigh = std::move(high_);
    const Ref<ilMemoryImg> keptLow = std::move(low_);
    if (!keptHigh) return false;
    const bool dual = low && keptLow;
    const Ref<ilMemoryImg> high = copyOf(target, stretch_);
    const Ref<ilMemoryImg> under = dual ? copyOf(*low, stretch_) : Ref<ilMemoryImg>();
    if (!high || (dual && !under)) return false;
    const std::size_t bytes = high->byteSize();
    for (std::size_t i = 0; i < bytes; i += 4)
        giveBack(high->data() + i, dual ? under->data() + i : nullptr, keptHigh->data() + i,
                 dual ? keptLow->data() + i : nullptr);
    const bool wrote = writeBack(target, stretch_, *high);
    return (!dual || writeBack(*low, stretch_, *under)) && wrote;
}

}  // namespace brushwork
