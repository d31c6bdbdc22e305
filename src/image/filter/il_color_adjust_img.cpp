#include "image/filter/il_color_adjust_img.h"

#include <cstddef>
#include <cstring>

#include "image/filter/adjust_hsl.h"
#include "image/filter/adjust_invert.h"
#include "image/filter/adjust_ranges.h"
#include "image/filter/adjust_tones.h"
#include "image/filter/color_convert.h"
#include "image/memory/image_buffer.h"

namespace brushwork {
namespace {

struct Picture {
    std::uint32_t* pixels;
    std::int32_t width, height;
    [[nodiscard]] std::size_t count() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

// The analysis is held until the work is done, whatever becomes of the slot.
template <class Tones>
bool adjustTones(const Picture& picture, Ref<ToneAnalysis>& slot, const std::optional<Tones>& tones,
                 void (*kernel)(const Tones&, const ToneBlock&)) {
    if (!tones) return false;
    const auto analysis = ToneAnalysis::in(slot, picture.pixels, picture.width, picture.height);
    if (!analysis) return false;
    analysis->walk(picture.pixels, [&](const ToneBlock& block) { kernel(*tones, block); });
    return true;
}

bool adjustRangesOf(const Picture& picture, const ColorAdjustParm& parm) {
    const auto numbers = RangeNumbers::from(parm);
    if (!numbers) return false;
    float hue = rememberedHue();
    adjustRanges(*numbers, picture.pixels, picture.count(), hue);
    rememberHue(hue);
    return true;
}

bool adjustHslOf(const Picture& picture, const ColorAdjustParm& parm) {
    const auto numbers = HslNumbers::from(parm);
    if (!numbers) return false;
    rememberLastHue(picture.pixels, picture.count());
    adjustHsl(*numbers, picture.pixels, picture.count());
    return true;
}

bool adjust(const Picture& picture, const ColorAdjustParm& parm, Ref<ToneAnalysis>& slot) {
    switch (parm.kind) {
        case AdjustToneBalance:
            return adjustTones(picture, slot, ToneBalance::from(parm), toneKernels().balance);
        case AdjustToneGain:
            return adjustTones(picture, slot, ToneGain::from(parm), toneKernels().gain);
        case AdjustTint:
            return adjustTones(picture, slot, ToneTint::from(parm), toneKernels().tint);
        case AdjustRanges:
        case AdjustShowRanges: return adjustRangesOf(picture, parm);
        case AdjustHsl: return adjustHslOf(picture, parm);
        case AdjustInvert: adjustInvert(picture.pixels, picture.count()); return true;
        default: return false;
    }
}

}  // namespace

const ClassDescriptor ilColorAdjustImg::descriptor = {"Color Adjust Image",
                                                      &ilSPMemoryImg::descriptor};

ilColorAdjustImg::~ilColorAdjustImg() = default;

const char* ilColorAdjustImg::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilColorAdjustImg::classDescriptor() const {
    return descriptor;
}

bool ilColorAdjustImg::apply(const ColorAdjustParm* parm, Ref<ToneAnalysis>& slot) {
    if (!parm || beginOperation() != ImageOk) return false;
    if (channels_ != 4 || dataType_ != TypeUChar || order_ != OrderInterleaved || !data_)
        return false;
    Picture picture{nullptr, sizeX_, sizeY_};
    if (reinterpret_cast<std::uintptr_t>(data_) % alignof(std::uint32_t) == 0) {
        picture.pixels = reinterpret_cast<std::uint32_t*>(data_);
        if (!adjust(picture, *parm, slot)) return false;
    } else {
        // A wrapped buffer that starts anywhere.
        const ImageBuffer copy(picture.count() * 4);
        if (!copy.data()) return false;
        picture.pixels = reinterpret_cast<std::uint32_t*>(copy.data());
        std::memcpy(copy.data(), data_, copy.bytes());
        if (!adjust(picture, *parm, slot)) return false;
        std::memcpy(data_, copy.data(), copy.bytes());
    }
    setAltered(NotifyOnly);
    return true;
}

}  // namespace brushwork
