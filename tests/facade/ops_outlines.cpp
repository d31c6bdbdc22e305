// Selections and shapes.
#include "facade/session_ops.h"

namespace brushwork::test {

using S = SessionOps;

std::vector<S::Op> outlinesOps() {
    using enum S::Undo;
    return {
        {"selectAll", Recorded, 1, [](S& s) { s.m.selectAll(); }},
        {"selectNone", Recorded, 5, [](S& s) { s.m.selectNone(); }},
        {"invertSelection", Recorded, 1, [](S& s) { s.m.invertSelection(); }},
        {"selectRegion", Recorded, 3, [](S& s) { s.m.selectRegion(s.box(), s.whole(0, 3)); }},
        {"selectMask", Recorded, 2,
         [](S& s) { s.m.selectMask(s.picture(1), s.coordinate(), s.coordinate(), s.whole(0, 2)); }},
        {"selectFromLayer", Recorded, 2,
         [](S& s) { s.m.selectFromLayer(s.layer(), s.whole(0, 2)); }},
        {"selectPolygon", Recorded, 2,
         [](S& s) {
             std::vector<float> points;
             for (int n = s.between(0, 11); n > 0; --n) points.push_back(s.coordinate());
             s.m.selectPolygon(points, s.whole(0, 2));
         }},
        {"loadMaskImage", Recorded, 1,
         [](S& s) { s.m.loadMaskImage(s.picture(1), s.coordinate(), s.coordinate()); }},
        {"moveSelection", Recorded, 2,
         [](S& s) { s.m.moveSelection(std::trunc(s.coordinate()), std::trunc(s.coordinate())); }},
        {"makeSelectionActive", Bare, 1, [](S& s) { s.m.makeSelectionActive(); }},
        {"setSelectionColor", Bare, 1,
         [](S& s) { s.m.setSelectionColor(s.color(), s.number(0, 1)); }},
        {"addShape", Recorded, 3,
         [](S& s) {
             const auto parms = makeRef<ShapeImageParms>();
             parms->fillColor = s.color();
             parms->strokeActive = s.chance(40);
             parms->stroke.width = s.number(1, 20);
             const std::int32_t id = s.m.addShape(s.whole(0, 3), s.shape(), parms);
             if (id >= 0) s.madeShape(id);
         }},
        {"deleteShape", Recorded, 2, [](S& s) { s.m.deleteShape(s.shapeId()); }},
        {"deleteShapes", Recorded, 1,
         [](S& s) {
             const std::int32_t ids[] = {s.shapeId(), s.shapeId(), s.shapeId()};
             s.m.deleteShapes(ids);
         }},
        {"moveShape", Recorded, 3,
         [](S& s) { s.m.moveShape(s.shapeId(), s.number(-9, 9), s.number(-9, 9)); }},
        {"shapeChanged", Nothing, 1, [](S& s) { s.m.shapeChanged(s.shapeId()); }},
    };
}

}  // namespace brushwork::test
