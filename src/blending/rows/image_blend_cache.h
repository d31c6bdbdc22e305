// ImageBlendCache: the row blenders that a painter has used of late.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "blending/rows/image_blend.h"
#include "brushwork/ref.h"

namespace brushwork::blender {

// The classes of the family.
enum class ImageBlendKind : std::uint8_t {
    Normal,
    Multiply,
    Screen,
    Add,
    Lighten,
    Darken,
    ColorDodge,
    LinearBurn,
    ColorBurn,
    Overlay,
    HardLight,
    SoftLight,
    Luminosity,
    Hue,
    Color,
    Saturation,
    Glow,
    SoftGlow,
    BrushNormal,
    BrushEraser,
    BrushSmudge,
};

// Never null.
[[nodiscard]] Ref<Base<>> makeImageBlend(ImageBlendKind kind);

// Keeps ten objects; the one that was asked for longest ago makes room. For one thread.
class ImageBlendCache {
  public:
    static constexpr std::size_t capacity = 10;

    // Made on first use. Whoever asks sets all the words that he needs: they are as another left
    // them.
    [[nodiscard]] Ref<Base<>> get(ImageBlendKind kind);
    [[nodiscard]] std::size_t size() const { return used_; }

  private:
    struct Entry {
        ImageBlendKind kind{};
        Ref<Base<>> object;
    };
    std::array<Entry, capacity> entries_;  // the latest first
    std::size_t used_ = 0;
};

}  // namespace brushwork::blender
