// One brush of every medium.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "brushwork/brush_parameters.h"
#include "brushwork/stroke_parameters.h"
#include "image/work/il_sp_memory_img.h"
#include "strokes/stroke/brush_mode.h"
#include "strokes/tip/image_paint_obj.h"

namespace brushwork::test {

struct TestBrush {
    std::string name;
    BrushParameters brush;
    StrokeParameters stroke;
};

inline Ref<ImagePaintObj> dottedTip(std::int32_t channels) {
    constexpr std::int32_t side = 32;
    const auto image = makeRef<ilSPMemoryImg>(side, side, channels);
    std::uint8_t* byte = image->data();
    for (std::int32_t y = 0; y < side; ++y)
        for (std::int32_t x = 0; x < side; ++x) {
            const bool dot = (x - 16) * (x - 16) + (y - 16) * (y - 16) < 200 && (x / 4 + y / 4) % 3;
            for (std::int32_t c = 0; c < channels; ++c)
                *byte++ = static_cast<std::uint8_t>(!dot ? 0 : c == 3 ? 220 : 40 + 5 * x + 20 * c);
        }
    return makeRef<ImagePaintObj>(image, ImagePaintObj::Levels::Reduced);
}

inline std::vector<TestBrush> brushSet() {
    TestBrush plain;
    plain.brush.color = {0.8f, 0.25f, 0.1f, 1.0f};
    plain.brush.tipPreset = BrushParameters::hardPreset;
    plain.brush.radiusLow = 1.5f;
    plain.brush.radiusHigh = 14.0f;
    plain.brush.opacityLow = 0.1f;
    plain.brush.opacityHigh = 0.7f;
    plain.brush.markerStrength = 0.5f;
    plain.brush.mixRate0 = 0.4f;
    plain.brush.mixRate1 = 0.5f;
    plain.brush.mixRate2 = 0.3f;
    std::vector<TestBrush> set;
    const auto add = [&](const char* name, int kind) -> TestBrush& {
        set.push_back(plain);
        set.back().name = name;
        set.back().stroke.brushKind = kind;
        return set.back();
    };
    add("hard", 0);
    add("soft", 0).brush.tipPreset = 0;
    add("flowing", 0).stroke.paintFactor0 = 0.5f;
    TestBrush& marker = add("marker", 0);
    marker.stroke.isMarker = true;
    marker.brush.tipPreset = 2;
    add("colourless marker", 4).brush.tipPreset = 4;
    add("smudge", 2).brush.tipPreset = 0;
    add("smudge of colour", 3).brush.tipPreset = 0;
    TestBrush& pastel = add("pastel", 6);
    pastel.brush.shapeObject = dottedTip(1);
    pastel.stroke.angleJitter = 180.0f;
    add("glow", 9).brush.tipPreset = 0;
    TestBrush& stencil = add("image tip", 0);
    stencil.brush.proceduralTip = false;
    stencil.brush.shapeObject = dottedTip(1);
    stencil.stroke.followDirection = true;
    stencil.stroke.radiusJitter = 6.0f;
    TestBrush& picture = add("colour tip", 0);
    picture.brush.proceduralTip = false;
    picture.brush.colorObject = dottedTip(4);
    picture.stroke.flowJitter = 4.0f;
    add("eraser", 8);
    add("smear", 0).brush.smearEnabled = true;
    TestBrush& wide = add("wide", 0);  // of more than one band
    wide.brush.tipPreset = 0;
    wide.brush.radiusHigh = 150.0f;
    return set;
}

}  // namespace brushwork::test
