#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

Problem runBrush(JournalSession& session, const Operation& op) {
    BrushPreset chosen = session.brush;
    if (op.has("use")) {
        chosen = session.brushes.at(op.text("use"));
    } else if (op.has("file")) {
        chosen = BrushPreset();
        if (auto problem = findBrush(op.text("file"), session.folder, chosen)) return problem;
    }
    if (auto problem = changeBrush(op, session.folder, chosen)) return problem;
    if (op.has("size")) chosen.scaleBy(op.number("size"));
    session.brush = chosen;
    if (op.has("name")) session.brushes[op.text("name")] = chosen;
    session.brush.applyTo(session.paint);
    if (op.has("colour")) session.paint.setColor(op.color("colour"));
    return std::nullopt;
}

Problem runColour(JournalSession& session, const Operation& op) {
    if (session.paint.inStroke()) return strokeIsOpen;
    session.paint.setColor(op.color("colour"));
    return std::nullopt;
}

Problem runClone(JournalSession& session, const Operation& op) {
    if (!op.has("layer")) {
        session.paint.setCloneSource(-1, 0.0f, 0.0f);
        return std::nullopt;
    }
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    session.paint.setCloneSource(id, op.number("x"), op.number("y"));
    return std::nullopt;
}

// 0 paints on the colours of a layer, 3 on its stencil.
Problem runPaintOn(JournalSession& session, const Operation& op) {
    session.paint.setStrokeMode(op.choice("what") == 1 ? 3 : 0);
    return std::nullopt;
}

Problem runSymmetry(JournalSession& session, const Operation& op) {
    const std::int32_t kind = op.choice("kind");
    if (kind == 0) {
        session.paint.setSymmetry({});
        return std::nullopt;
    }
    const auto symmetry = makeRef<Symmetry>();
    symmetry->setMirrorX(kind == 1 || kind == 3);
    symmetry->setMirrorY(kind == 2 || kind == 3);
    symmetry->setRotateOnly(kind == 4);
    symmetry->setRadial(kind == 5);
    const ilTile canvas = session.paint.canvasBounds(activeOne);
    const auto centre = op.point(
        "centre", {static_cast<float>(canvas.nx) / 2.0f, static_cast<float>(canvas.ny) / 2.0f});
    symmetry->setCenter(centre[0], centre[1]);
    symmetry->setSectorCount(op.integer("sectors", symmetry->sectorCount()));
    symmetry->setRadialAngle(op.number("angle") * 3.14159265f / 180.0f);
    symmetry->setPinToSector(op.flag("pin"));
    symmetry->setSeparateRenderers(op.flag("separate"));
    session.paint.setSymmetry(symmetry);
    return std::nullopt;
}

}  // namespace

std::vector<OpRow> brushOps() {
    std::vector<FieldRule> fields = brushFields();
    fields.insert(fields.begin(), {newName("name", NameOf::Brush), nameOf("use", NameOf::Brush),
                                   file("file"), number("size", 0.01, 100.0), color("colour")});
    return {
        {{"brush", "The brush from now on: a file or a shipped brush, changed by what is given.",
          std::move(fields)},
         runBrush},
        {{"colour", "The colour from now on.", {needed(color("colour"))}}, runColour},
        {{"clone",
          "The brush paints from a layer, a distance away; without one, no longer.",
          {layer(), pixels("x"), pixels("y")}},
         runClone},
        {{"paint_on", "Where strokes go.", {needed(choice("what", {"colours", "stencil"}))}},
         runPaintOn},
        {{"symmetry",
          "Strokes are painted many times at once.",
          {needed(choice(
               "kind", {"none", "mirror_x", "mirror_y", "mirror_both", "rotate", "kaleidoscope"})),
           point("centre"), integer("sectors", 1, 1024), number("angle", -360.0, 360.0),
           flag("pin"), since(2, flag("separate"))}},
         runSymmetry},
    };
}

}  // namespace brushwork::tools
