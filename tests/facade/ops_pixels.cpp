// Pixels of layers: whole, filled, adjusted, transformed.
#include "facade/session_ops.h"

namespace brushwork::test {

using S = SessionOps;

std::vector<S::Op> pixelsOps() {
    using enum S::Undo;
    return {
        {"clearLayer", Recorded, 2, [](S& s) { s.m.clearLayer(s.chance(80)); }},
        {"fillLayer", Recorded, 2, [](S& s) { s.m.fillLayer(s.color()); }},
        {"fillWithImage", Recorded, 2,
         [](S& s) { s.m.fillWithImage(s.picture(s.chance(85) ? 4 : 1)); }},
        {"clearRegion", Recorded, 2, [](S& s) { s.m.clearRegion(s.box(), s.layer()); }},
        {"invertMask", Recorded, 2, [](S& s) { s.m.invertMask(s.layer()); }},
        {"flipLayer", Recorded, 2,
         [](S& s) { s.m.flipLayer(s.chance(60), s.chance(60), s.layer(), s.chance(50)); }},
        {"rotateLayer", Recorded, 2, [](S& s) { s.m.rotateLayer(s.chance(50), s.layer()); }},
        {"flipCanvas", Recorded, 1, [](S& s) { s.m.flipCanvas(s.chance(60), s.chance(60)); }},
        {"rotateCanvas", Recorded, -1, [](S& s) { s.m.rotateCanvas(s.chance(50)); }},
        {"applyConvolve", Recorded, 2,
         [](S& s) {
             PixelFamily::ConvolveParams params;
             params.strength = s.number(0, 10);
             params.detail = s.number(0, 3);
             params.radius = s.number(0, 5);
             params.sharpen = s.chance(50);
             s.m.applyConvolve(params, s.layer());
         }},
        {"shrinkWrap", Recorded, 1,
         [](S& s) { s.m.shrinkWrap(s.color(), s.number(0, 4), s.number(0, 1)); }},
        {"transform", Recorded, 4,
         [](S& s) {
             if (!s.m.beginTransform(s.layers(), s.whole(0, 1), s.whole(0, 1))) return;
             for (int n = s.between(0, 3); n > 0; --n) s.transformStep();
             s.m.endTransform(s.chance(70));
         }},
        {"beginTransform", Recorded, -3,
         [](S& s) { s.m.beginTransform(s.layers(), s.whole(0, 2), s.whole(0, 2)); }},
        {"updateTransform", Nothing, -4, [](S& s) { s.transformStep(); }},
        {"endTransform", Nothing, 2, [](S& s) { s.m.endTransform(s.chance(70)); }},
        {"newTemporaryLayer", Recorded, 1,
         [](S& s) {
             if (s.m.layerCount() < 10) s.saw(s.m.newTemporaryLayer());
         }},
        {"floodFill", Recorded, 3,
         [](S& s) {
             s.m.floodFill(s.coordinate(), s.coordinate(), s.color(), s.number(0, 1), s.layer(),
                           s.canvas());
             if (s.chance(30)) s.m.continueFill(s.number(0, 1));
             s.m.endFill();
         }},
        {"openFill", Recorded, -2,
         [](S& s) {
             s.m.floodFill(s.coordinate(), s.coordinate(), s.color(), s.number(0, 1), s.layer(),
                           s.canvas());
         }},
        {"continueFill", Nothing, -2, [](S& s) { s.m.continueFill(s.number(0, 1)); }},
        {"endFill", Nothing, 1, [](S& s) { s.m.endFill(); }},
        {"magicWand", Recorded, 2,
         [](S& s) {
             s.m.magicWand(s.coordinate(), s.coordinate(), s.number(0, 1), s.chance(50), s.layer(),
                           s.chance(50));
         }},
        {"sampleFill", Nothing, 1,
         [](S& s) {
             std::uint32_t pixel = 0;
             s.m.sampleFill(s.coordinate(), s.coordinate(), &pixel, s.layer());
         }},
        {"fillGradient", Recorded, 1,
         [](S& s) {
             FillFamily::Gradient gradient;
             gradient.fromX = s.coordinate();
             gradient.toX = s.coordinate();
             gradient.toY = s.coordinate();
             gradient.fromColor = s.color();
             gradient.radial = s.chance(40);
             s.m.fillGradient(gradient, s.layer());
         }},
        {"colorAdjust", Recorded, 2,
         [](S& s) {
             ColorAdjustParm parm;
             parm.reset(s.whole(0, 7));
             parm.hue = {s.number(0, 360), s.number(-180, 180)};
             parm.toneBrightness = {s.number(0, 2), s.number(0, 2), s.number(0, 2)};
             s.m.colorAdjust(s.chance(90) ? ImageRef() : s.picture(4), parm);
         }},
    };
}

}  // namespace brushwork::test
