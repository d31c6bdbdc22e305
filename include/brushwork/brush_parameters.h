// BrushParameters: what a brush is: colour, tip, texture, how it answers to pressure.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/export.h"
#include "brushwork/ref.h"

namespace brushwork {

class BrushTextureParameters;
class ImagePaintObj;
class ilImage;

// A value. Images and texture are shared by its copies.
struct BRUSHWORK_API BrushParameters {
    // All zero, no clone layer, and the tip computed.
    BrushParameters();
    BrushParameters(const BrushParameters&);
    BrushParameters(BrushParameters&&) noexcept;
    BrushParameters& operator=(const BrushParameters&);
    BrushParameters& operator=(BrushParameters&&) noexcept;
    ~BrushParameters();

    // What a renderer begins with: an opaque white, hard, round tip of radius 10.
    [[nodiscard]] static BrushParameters defaults();

    // Share of the radius that is solid, by tipPreset.
    [[nodiscard]] float solidShare() const;

    std::array<float, 4> color{};               // red, green, blue, alpha, 0..1, not premultiplied
    std::int32_t tipPreset = 0;                 // ownHardness, or a number of presetHardness
    std::array<std::uint32_t, 63> tipRecord{};  // a host's record of the tip, only kept
    float hardness = 0.0f;                      // solid share of the radius for ownHardness, 0..1
    bool proceduralTip = true;                  // computed; otherwise it comes from an image alone
    bool textureEnabled = false;
    Ref<ImagePaintObj> shapeObject;  // mask of the tip, 1 channel; may be null
    Ref<ImagePaintObj> colorObject;  // colours of the tip, 4 channels; may be null
    Ref<BrushTextureParameters> texture;
    Ref<ilImage> textureImage;
    float cloneOffsetX = 0.0f, cloneOffsetY = 0.0f;  // of a clone source, in pixels
    std::int32_t cloneLayer = -1;                    // where a clone brush takes from; -1: none
    bool cloneEnabled = false;                       // paints from a source layer
    bool smearEnabled = false;                       // drags the canvas along
    float radiusLow = 0.0f, radiusHigh = 0.0f;       // pixels, at no and at full pressure
    float opacityLow = 0.0f, opacityHigh = 0.0f;     // 0..1, at no and at full pressure
    float markerStrength = 0.0f;
    float mixRate0 = 0.0f, mixRate1 = 0.0f, mixRate2 = 0.0f;  // 0..1, how brushes pick up paint

    static constexpr std::int32_t ownHardness = 255;  // of tipPreset: `hardness` counts
    static constexpr std::int32_t hardPreset = 8;
};

// Solid share of the radius of a preset: 0.28 (0, 1), 0.75 (2, 3), 0.88 (4), 1.0 (8), else 0.0.
[[nodiscard]] BRUSHWORK_API float presetHardness(std::int32_t preset);
// The preset for a share: 0 up to 0.28, 2 up to 0.75, 4 up to 0.88, 8 above.
[[nodiscard]] BRUSHWORK_API std::int32_t hardnessPreset(float hardness);

}  // namespace brushwork
