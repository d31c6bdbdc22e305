#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

FieldRule how() {
    return choice("how", {"replace", "add", "take_away"});
}

Problem onCanvas(const JournalSession& session) {
    if (session.paint.inStroke()) return strokeIsOpen;
    return problemUnless(session.paint.hasCanvas(activeOne), noCanvas);
}

Problem runSelect(JournalSession& session, const Operation& op) {
    switch (op.choice("what")) {
        case 0: session.paint.selectAll(); break;
        case 1: session.paint.selectNone(); break;
        default: session.paint.invertSelection(); break;
    }
    return onCanvas(session);
}

Problem runSelectBox(JournalSession& session, const Operation& op) {
    session.paint.selectRegion(op.box("box"), op.choice("how"));
    return onCanvas(session);
}

Problem runSelectPolygon(JournalSession& session, const Operation& op) {
    std::vector<float> flat;
    for (const StrokeInputPoint& corner : op.points("points")) {
        flat.push_back(corner.x);
        flat.push_back(corner.y);
    }
    session.paint.selectPolygon(flat, op.choice("how"));
    return onCanvas(session);
}

// The curve's own tessellation becomes a polygon.
Problem runSelectCurve(JournalSession& session, const Operation& op) {
    const auto& curve = session.curves.at(op.text("curve"));
    std::int32_t count = 0;
    HostSegment* const pieces = hostCallTable().tessellateCurve(curve.get(), 0.1, &count);
    std::vector<float> flat;
    for (std::int32_t n = 0; n < count; ++n) {
        flat.push_back(pieces[n].x);
        flat.push_back(pieces[n].y);
    }
    hostCallTable().freeSegments(pieces);
    session.paint.selectPolygon(flat, op.choice("how"));
    return onCanvas(session);
}

Problem runSelectPixels(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    session.paint.selectFromLayer(id, op.choice("how"));
    return onCanvas(session);
}

Problem runSelectImage(JournalSession& session, const Operation& op) {
    ImageRef mask;
    if (auto problem = session.picture(op, "file", PictureUse::Mask, mask)) return problem;
    session.paint.selectMask(mask, op.number("x"), op.number("y"), op.choice("how"));
    return onCanvas(session);
}

Problem runMoveSelection(JournalSession& session, const Operation& op) {
    session.paint.moveSelection(op.number("x"), op.number("y"));
    return onCanvas(session);
}

Problem runUseSelection(JournalSession& session, const Operation&) {
    session.paint.makeSelectionActive();
    return onCanvas(session);
}

Problem runWand(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    const auto at = op.point("at");
    return problemUnless(session.paint.magicWand(at[0], at[1], op.number("tolerance"),
                                                 !op.flag("add"), id, op.flag("follow_ramps")),
                         "nothing can be selected there");
}

}  // namespace

std::vector<OpRow> selectionOps() {
    return {
        {{"select",
          "All, nothing, or what was not selected.",
          {needed(choice("what", {"all", "none", "invert"}))}},
         runSelect},
        {{"select_box", "A box of the canvas.", {needed(box("box")), how()}}, runSelectBox},
        {{"select_polygon", "What straight lines enclose.", {needed(points("points", 3)), how()}},
         runSelectPolygon},
        {{"select_curve",
          "What a curve encloses.",
          {needed(nameOf("curve", NameOf::Curve)), how()}},
         runSelectCurve},
        {{"select_pixels", "What a layer holds, by its alpha.", {layer(), how()}}, runSelectPixels},
        {{"select_image",
          "By the lightness of a picture file.",
          {needed(file("file")), pixels("x"), pixels("y"), how()}},
         runSelectImage},
        {{"move_selection", "Moves the selection by a distance.", {pixels("x"), pixels("y")}},
         runMoveSelection},
        {{"use_selection", "Strokes paint the selection itself from now on.", {}}, runUseSelection},
        {{"wand",
          "What lies around a place and has colours like it.",
          {layer(), needed(point("at")), share("tolerance"), flag("add"), flag("follow_ramps")}},
         runWand},
    };
}

}  // namespace brushwork::tools
