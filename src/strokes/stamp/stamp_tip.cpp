#include "strokes/stamp/stamp_tip.h"

namespace brushwork::npc {
namespace {

std::uint32_t idOf(const Ref<ImagePaintObj>& object) {
    return object ? object->objectId() : 0;
}

std::uint32_t revisionOf(const Ref<ImagePaintObj>& object) {
    return object ? object->revision() : 0;
}

}  // namespace

StampIdentity StampTip::identity() const {
    StampIdentity identity;
    identity.color = brushColor;
    identity.hardness = hardness;
    identity.procedural = procedural;
    identity.tipPreset = preset;
    identity.tipRecord = record;
    identity.shapeId = idOf(shape);
    identity.shapeRevision = revisionOf(shape);
    identity.colorId = idOf(color);
    identity.colorRevision = revisionOf(color);
    identity.withColor = colors == StampColors::Kept && color;
    return identity;
}

StampTip stampTipOf(const BrushParameters& brush, StampColors colors) {
    StampTip tip;
    tip.hardness = brush.solidShare();
    tip.procedural = brush.proceduralTip;
    tip.smears = brush.smearEnabled;
    tip.colors = colors;
    tip.shape = brush.shapeObject;
    tip.color = brush.colorObject;
    tip.brushColor = brush.color;
    tip.preset = brush.tipPreset;
    tip.record = brush.tipRecord;
    return tip;
}

}  // namespace brushwork::npc
