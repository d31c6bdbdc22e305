// Canvases, questions and the keeping of undo.
#include "facade/session_ops.h"

namespace brushwork::test {

using S = SessionOps;

std::vector<S::Op> canvasesOps() {
    using enum S::Undo;
    return {
        {"setCurrentCanvas", Nothing, 2, [](S& s) { s.m.setCurrentCanvas(s.canvas()); }},
        {"newCanvas", Bare, -1,
         [](S& s) {
             if (s.m.canvasCount() < 4) s.m.newCanvas(s.whole(1, 260), s.whole(1, 200));
         }},
        {"duplicateCanvas", Bare, -1,
         [](S& s) {
             if (s.m.canvasCount() < 4) s.m.duplicateCanvas(s.canvas());
         }},
        {"closeCanvas", Bare, -1, [](S& s) { s.m.closeCanvas(s.canvas()); }},
        {"scaleCanvas", Recorded, -1,
         [](S& s) {
             const ilTile box = s.m.canvasBounds(-2);
             const float scale = s.number(0.4f, 1.6f);
             if (static_cast<float>(box.nx) * scale < 500)
                 s.m.scaleCanvas(-2, scale, s.whole(0, 2));
         }},
        {"setCanvasSize", Bare, -1,
         [](S& s) { s.m.setCanvasSize(s.canvas(), s.between(-3, 260), s.between(-3, 200)); }},
        {"setView", Nothing, -1,
         [](S& s) {
             TransformRecord view;
             view.x = s.number(-50, 50);
             view.scaleX = view.scaleY = s.number(0.25f, 3.0f);
             view.rotation = s.number(0, 90);
             s.m.setView(s.canvas(), view);
         }},
        {"present", Nothing, 2, [](S& s) { s.m.present(s.canvas()); }},
        {"refreshDisplay", Nothing, 1, [](S& s) { s.m.refreshDisplay(s.canvas()); }},
        {"questions", Nothing, 4,
         [](S& s) {
             ilTile box;
             float x = s.coordinate();
             float y = s.coordinate();
             std::uint32_t pixel = 0;
             s.m.viewToLayer(&x, &y, s.layer());
             s.m.layerToView(&x, &y, s.layer());
             static_cast<void>(s.m.layerBounds(s.layer(), box));
             s.m.selectionBounds(box);
             static_cast<void>(s.m.thumbnail(s.layer()));
             static_cast<void>(s.m.pickLayer(s.coordinate(), s.coordinate(), s.number(0, 1)));
             static_cast<void>(s.m.groupChild(s.layer(), s.whole(-1, 5)));
             static_cast<void>(s.m.groupDepth(s.layer()));
             static_cast<void>(s.m.maxGroupDepth(s.layer()));
             static_cast<void>(s.m.canMergeDown(s.layer()));
             static_cast<void>(s.m.layerIdAt(s.whole(-3, 9), s.chance(50), s.canvas()));
             s.m.layerPixel(s.layer(), s.whole(-9, 300), s.whole(-9, 300), &pixel);
             s.m.canvasPixel(s.whole(-9, 300), s.whole(-9, 300), &pixel);
             s.m.dump();
         }},
        {"undoSwitches", Nothing, -1,
         [](S& s) {
             s.m.lockUndo(s.chance(10));
             s.m.setUndoEnabled(s.chance(90));
         }},
        {"clearUndo", Nothing, -1,
         [](S& s) {
             if (s.chance(10)) s.m.clearUndo();
         }},
        {"snapshotAndClear", Nothing, -1,
         [](S& s) {
             if (s.chance(10)) s.m.snapshotAndClear(s.between(-1, 3));
         }},
        {"noteStackSwitch", Nothing, -1, [](S& s) { s.m.noteStackSwitch(s.whole(-2, 4)); }},
        {"recordCanvas", Nothing, 1, [](S& s) { s.m.recordCanvas(s.canvas()); }},
        {"ring", Nothing, 4, [](S& s) { s.host_.ring(); }},
    };
}

}  // namespace brushwork::test
