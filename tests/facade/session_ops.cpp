#include "facade/session_ops.h"

namespace brushwork::test {

void SessionOps::newBrush() {
    BrushParameters brush = BrushParameters::defaults();
    brush.radiusLow = number(0, 8);
    brush.radiusHigh = number(1, 24);
    brush.opacityLow = number(0, 1);
    brush.opacityHigh = number(0, 1);
    brush.hardness = number(0, 1);
    brush.tipPreset = chance(50) ? BrushParameters::ownHardness : whole(0, 9);
    brush.markerStrength = number(0, 1);
    brush.mixRate0 = number(0, 1);
    brush.mixRate1 = number(0, 1);
    brush.smearEnabled = chance(10);
    StrokeParameters stroke;
    stroke.spacing = number(0.3f, 3.0f);
    stroke.interpolationKind = whole(0, 3);
    stroke.brushKind = chance(40) ? 0 : whole(0, 10);
    stroke.isMarker = chance(10);
    stroke.airbrush = chance(10);
    stroke.followDirection = chance(10);
    if (chance(20)) stroke.radiusJitter = number(0, 20);
    if (chance(20)) stroke.opacityJitter = number(0, 20);
    if (chance(10)) stroke.flowJitter = number(0, 20);
    if (chance(10)) stroke.paintFactor0 = number(0, 1);
    if (chance(15)) stroke.strokeBufferOpacity = number(0, 1);
    if (chance(10)) stroke.strokeBufferMode = static_cast<BlendModeId>(whole(0, 20));
    if (wild_ && chance(10)) stroke.pickupScale = oddFloat();
    m.setBrush(brush, stroke);
}

const std::vector<SessionOps::Op>& SessionOps::all() {
    static const std::vector<Op> ops = [] {
        std::vector<Op> every;
        for (const auto& family :
             {paintingOps(), layersOps(), pixelsOps(), outlinesOps(), canvasesOps()})
            every.insert(every.end(), family.begin(), family.end());
        return every;
    }();
    return ops;
}

}  // namespace brushwork::test
