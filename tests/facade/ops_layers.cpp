// Layers, their order and their attributes.
#include "facade/session_ops.h"

namespace brushwork::test {

using S = SessionOps;

std::vector<S::Op> layersOps() {
    using enum S::Undo;
    return {
        {"newLayer", Recorded, 6,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newLayer(s.whole(-2, 8), s.whole(0, 2), s.between(-50, 50),
                                s.between(-50, 50), s.chance(70), true));
         }},
        {"newLayerBare", Bare, 1,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newLayer(s.whole(-2, 8), 0, 0, 0, true, false));
         }},
        {"newImageLayer", Recorded, 3,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newImageLayer(s.picture(s.chance(80) ? 4 : 1), s.whole(-50, 50),
                                     s.whole(-50, 50)));
         }},
        {"newMaskLayer", Recorded, 2,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newMaskLayer(s.chance(50)));
         }},
        {"newShapeLayer", Recorded, 1,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newShapeLayer(s.whole(-2, 8), s.whole(0, 3)));
         }},
        {"newGroup", Recorded, 2,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newGroup(u"G", s.whole(-2, 8)));
         }},
        {"deleteLayer", Recorded, 3, [](S& s) { s.m.deleteLayer(s.layer()); }},
        {"deleteLayers", Recorded, 3, [](S& s) { s.m.deleteLayers(s.layers(), s.chance(20)); }},
        {"clearLayers", Recorded, 1,
         [](S& s) {
             if (s.chance(20)) s.m.clearLayers(s.canvas());
         }},
        {"flattenAll", Recorded, 1,
         [](S& s) {
             if (s.chance(30)) s.m.flattenAll(s.canvas(), s.chance(50));
         }},
        {"mergeVisible", Recorded, 1,
         [](S& s) {
             if (s.chance(40)) s.m.mergeVisible(s.chance(20));
         }},
        {"mergeDown", Recorded, 3, [](S& s) { s.m.mergeDown(s.layer()); }},
        {"flattenGroup", Recorded, 1, [](S& s) { s.m.flattenGroup(s.layer(), s.chance(20)); }},
        {"setActiveLayer", Bare, 6, [](S& s) { s.m.setActiveLayer(s.layer()); }},
        {"nextUp", Bare, 3, [](S& s) { s.m.nextUp(); }},
        {"nextDown", Bare, 3, [](S& s) { s.m.nextDown(); }},
        {"moveLayers", Recorded, 3,
         [](S& s) {
             s.m.moveLayers(s.layers(), s.whole(-2, 8), s.chance(60) ? -1 : s.layer(),
                            s.chance(10));
         }},
        {"makeGroupFrom", Recorded, 2, [](S& s) { s.saw(s.m.makeGroupFrom(s.layers())); }},
        {"ungroup", Recorded, 2, [](S& s) { s.m.ungroup(s.layers(), s.chance(30)); }},
        {"duplicateLayer", Recorded, 2,
         [](S& s) {
             if (s.m.layerCount() < 10) s.saw(s.m.duplicateLayer());
         }},
        {"duplicateLayers", Recorded, 1,
         [](S& s) {
             std::vector<std::int32_t> made;
             if (s.m.layerCount() < 8) s.m.duplicateLayers(s.layers(), made);
             for (const std::int32_t id : made) s.saw(id);
         }},
        {"setVisible", Bare, 3, [](S& s) { s.m.setVisible(s.layer(), s.chance(75)); }},
        {"setOpacity", Bare, 3, [](S& s) { s.m.setOpacity(s.layer(), s.number(0, 1)); }},
        {"setBlendMode", Bare, 3,
         [](S& s) { s.m.setBlendMode(s.layer(), s.chance(20) ? 0xffff : s.whole(0, 30)); }},
        {"setLocked", Bare, 2, [](S& s) { s.m.setLocked(s.layer(), s.chance(20)); }},
        {"setName", Bare, 2, [](S& s) { s.m.setName(s.layer(), u"Name"); }},
        {"setPosition", Recorded, 4,
         [](S& s) {
             s.m.setPosition(s.layer(), std::trunc(s.coordinate()), std::trunc(s.coordinate()),
                             true, s.chance(50));
         }},
        {"setPositionBare", Bare, 3,
         [](S& s) { s.m.setPosition(s.layer(), s.coordinate(), s.coordinate()); }},
        {"setLabelColor", Bare, 1,
         [](S& s) { s.m.setLabelColor(s.layer(), static_cast<std::uint32_t>(s.whole(0, 9))); }},
        {"setEnabled", Bare, 2, [](S& s) { s.m.setEnabled(s.layer(), s.chance(70)); }},
        {"setStencilActive", Bare, 2, [](S& s) { s.m.setStencilActive(s.layer(), s.chance(70)); }},
        {"setLockAlpha", Nothing, 2, [](S& s) { s.m.setLockAlpha(s.chance(20)); }},
        {"setExpanded", Bare, 1, [](S& s) { s.m.setExpanded(s.layer(), s.chance(50)); }},
        {"setBackground", Bare, 1, [](S& s) { s.m.setBackground(s.color(), s.canvas()); }},
        {"setMaskColor", Bare, 1,
         [](S& s) {
             s.m.setMaskColor(s.color());
             s.m.setMaskOpacity(s.number(0, 1));
         }},
        {"setThumbnailSize", Nothing, 1,
         [](S& s) { s.m.setThumbnailSize(s.layer(), s.whole(-5, 80), s.whole(-5, 80)); }},
    };
}

}  // namespace brushwork::test
