// Strokes and brushes.
#include "facade/session_ops.h"

namespace brushwork::test {

using S = SessionOps;

std::vector<S::Op> paintingOps() {
    using enum S::Undo;
    return {
        {"stroke", Recorded, 10,
         [](S& s) {
             if (!s.m.beginStroke()) return;
             s.points(12);
             if (s.chance(15))
                 s.m.cancelStroke();
             else
                 s.m.endStroke();
         }},
        {"strokeLine", Recorded, 6,
         [](S& s) {
             s.m.strokeLine(s.coordinate(), s.coordinate(), s.coordinate(), s.coordinate(),
                            s.number(0, 1));
         }},
        {"strokePolyline", Recorded, 3,
         [](S& s) {
             std::vector<StrokePointData> points;
             for (int n = s.between(0, 5); n > 0; --n)
                 points.emplace_back(s.coordinate(), s.coordinate(), s.number(0, 1));
             s.m.strokePolyline(points);
         }},
        {"beginStroke", Recorded, -3, [](S& s) { s.m.beginStroke(); }},
        {"points", Nothing, -6, [](S& s) { s.points(6); }},
        {"addPoints", Nothing, 2,
         [](S& s) {
             const StrokeInputPoint points[] = {s.penPoint(), s.penPoint()};
             s.m.addPoints(points);
         }},
        {"endStroke", Recorded, 3, [](S& s) { s.m.endStroke(); }},
        {"cancelStroke", Nothing, 2, [](S& s) { s.m.cancelStroke(); }},
        {"setColor", Nothing, 6, [](S& s) { s.m.setColor(s.color()); }},
        {"setBrush", Nothing, 8, [](S& s) { s.newBrush(); }},
        {"setStrokeMode", Nothing, 4,
         [](S& s) { s.m.setStrokeMode(s.chance(70) ? 0 : s.whole(0, 9)); }},
        {"setBrushBlend", Nothing, 3,
         [](S& s) { s.m.setBrushBlend(s.chance(60) ? 0 : s.whole(0, 30), s.number(0, 1)); }},
        {"setBrushTexture", Nothing, 2,
         [](S& s) {
             const auto paper = makeRef<BrushTextureParameters>();
             const ImageRef grain = s.picture(1);
             paper->image = Ref<ilImage>(grain.image());
             paper->setRandomOffset(s.chance(50));
             s.m.setBrushTexture(s.chance(50) ? paper : Ref<BrushTextureParameters>());
         }},
        {"setStamp", Nothing, 2,
         [](S& s) { s.m.setStamp(s.chance(60) ? ImageRef() : s.picture(4)); }},
        {"setCloneSource", Nothing, 2,
         [](S& s) {
             s.m.setCloneSource(s.chance(70) ? -1 : s.layer(), s.coordinate(), s.coordinate());
         }},
        {"setJitter", Nothing, 2,
         [](S& s) {
             s.m.setColorJitter(s.chance(50), s.number(0, 100), s.number(0, 100), s.number(0, 100));
         }},
        {"setSymmetry", Nothing, 2,
         [](S& s) {
             const auto symmetry = makeRef<Symmetry>();
             symmetry->setCenter(s.coordinate(), s.coordinate());
             symmetry->setMirrorX(s.chance(50));
             symmetry->setRadial(s.chance(50));
             symmetry->setSectorCount(s.whole(1, 6));
             s.m.setSymmetry(s.chance(60) ? Ref<Symmetry>() : symmetry);
         }},
        {"modalBrushes", Nothing, 2,
         [](S& s) {
             s.m.setTextureBrush(s.chance(30));
             s.m.setPatternBrush(s.chance(30));
         }},
        {"setDisplayUpdates", Nothing, 2, [](S& s) { s.m.setDisplayUpdates(s.chance(70)); }},
    };
}

}  // namespace brushwork::test
