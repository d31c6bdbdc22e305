#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

constexpr const char* ownSize = "the canvas is on a surface of the host's, which has its size";

Problem runCanvas(JournalSession& session, const Operation& op) {
    const std::int32_t width = op.integer("width"), height = op.integer("height");
    const bool onSurface = op.flag("surface");
    const std::int32_t index =
        session.paint.newCanvas(width, height, onSurface ? width : 0, onSurface ? height : 0);
    if (index < 0) return "no canvas of that size can be made now";
    if (op.has("name")) session.canvases[op.text("name")] = index;
    if (op.has("background")) session.paint.setBackground(op.color("background"));
    return std::nullopt;
}

Problem canvasOf(const JournalSession& session, const Operation& op, std::int32_t& index) {
    index = session.paint.currentCanvas();
    if (op.has("canvas")) index = session.canvases.at(op.text("canvas"));
    return problemUnless(session.paint.hasCanvas(index), "that canvas is not open");
}

Problem runUseCanvas(JournalSession& session, const Operation& op) {
    std::int32_t index = -1;
    if (auto problem = canvasOf(session, op, index)) return problem;
    return problemUnless(session.paint.setCurrentCanvas(index), strokeIsOpen);
}

Problem runCloseCanvas(JournalSession& session, const Operation& op) {
    std::int32_t index = -1;
    if (auto problem = canvasOf(session, op, index)) return problem;
    if (session.animation.holdsCanvas(index)) return "a frame has that canvas";
    return problemUnless(session.paint.closeCanvas(index), strokeIsOpen);
}

Problem runDuplicateCanvas(JournalSession& session, const Operation& op) {
    const std::int32_t copy = session.paint.duplicateCanvas(activeOne);
    if (copy < 0) return noCanvas;
    session.canvases[op.text("as")] = copy;
    return std::nullopt;
}

// A surface of the host's keeps its size, so nothing may want another one.
bool keepsSize(const JournalSession& session) {
    return session.surfaceCanvases.count(session.paint.currentCanvas()) != 0;
}

Problem runScaleCanvas(JournalSession& session, const Operation& op) {
    if (keepsSize(session)) return ownSize;
    return problemUnless(
        session.paint.scaleCanvas(activeOne, op.number("factor"), op.choice("filter", 2)),
        "the canvas can't be scaled to that size, or a layer of it holds shapes");
}

Problem runResizeCanvas(JournalSession& session, const Operation& op) {
    if (keepsSize(session)) return ownSize;
    return problemUnless(
        session.paint.setCanvasSize(activeOne, op.integer("width"), op.integer("height")),
        noCanvas);
}

Problem runFitCanvas(JournalSession& session, const Operation&) {
    if (keepsSize(session)) return ownSize;
    return problemUnless(session.paint.resizeToFit(activeOne), "the layers hold no pixels");
}

Problem runFlipCanvas(JournalSession& session, const Operation& op) {
    if (!session.paint.hasCanvas(activeOne)) return noCanvas;
    if (session.paint.inStroke()) return strokeIsOpen;
    const std::int32_t way = op.choice("way");
    session.paint.flipCanvas(way != 1, way != 0);
    return std::nullopt;
}

Problem runRotateCanvas(JournalSession& session, const Operation& op) {
    if (!session.paint.hasCanvas(activeOne)) return noCanvas;
    if (session.paint.inStroke()) return strokeIsOpen;
    const ilTile box = session.paint.canvasBounds(activeOne);
    if (keepsSize(session) && box.nx != box.ny) return ownSize;
    session.paint.rotateCanvas(op.choice("to") == 1);
    return std::nullopt;
}

Problem runBackground(JournalSession& session, const Operation& op) {
    session.paint.setBackground(op.color("colour"));
    return problemUnless(session.paint.hasCanvas(activeOne), noCanvas);
}

Problem runView(JournalSession& session, const Operation& op) {
    TransformRecord view;
    view.x = op.number("x");
    view.y = op.number("y");
    view.scaleX = view.scaleY = op.number("scale", 1.0f);
    view.rotation = op.number("rotation");
    session.paint.setView(activeOne, view);
    return problemUnless(session.paint.hasCanvas(activeOne), noCanvas);
}

Problem runWait(JournalSession& session, const Operation& op) {
    session.host.timers().wait(op.integer("milliseconds"));
    return std::nullopt;
}

Problem runNote(JournalSession& session, const Operation& op) {
    if (session.print) session.print(op.text("text"));
    return std::nullopt;
}

Problem runSave(JournalSession& session, const Operation& op) {
    return session.save(session.pathOf(op.text("file")),
                        op.has("quality") ? std::optional(op.integer("quality")) : std::nullopt);
}

}  // namespace

std::vector<OpRow> canvasOps() {
    const auto side = [](const char* name) { return needed(integer(name, 1, 16384)); };
    return {
        {{"canvas",
          "A new canvas, which is the current one. It has no layer yet.",
          {newName("name", NameOf::Canvas), side("width"), side("height"), color("background"),
           flag("surface")}},
         [](JournalSession& session, const Operation& op) {
             auto problem = runCanvas(session, op);
             if (!problem && op.flag("surface"))
                 session.surfaceCanvases.insert(session.paint.currentCanvas());
             return problem;
         }},
        {{"use_canvas",
          "Makes a canvas the current one.",
          {needed(nameOf("canvas", NameOf::Canvas))}},
         runUseCanvas},
        {{"close_canvas",
          "Closes a canvas, or the current one.",
          {nameOf("canvas", NameOf::Canvas)}},
         runCloseCanvas},
        {{"duplicate_canvas",
          "A copy of the current canvas, which stays the current one.",
          {needed(newName("as", NameOf::Canvas))}},
         runDuplicateCanvas},
        {{"scale_canvas",
          "Resamples canvas and layers; none of them may hold shapes.",
          {needed(number("factor", 0.01, 16.0)),
           choice("filter", {"nearest", "bilinear", "bicubic"})}},
         runScaleCanvas},
        {{"resize_canvas",
          "Another size; layers stay where they are. Undo doesn't know of it.",
          {side("width"), side("height")}},
         runResizeCanvas},
        {{"fit_canvas", "The size and place of what all layers hold.", {}}, runFitCanvas},
        {{"flip_canvas",
          "Mirrors canvas and layers.",
          {needed(choice("way", {"horizontal", "vertical", "both"}))}},
         runFlipCanvas},
        {{"rotate_canvas",
          "A quarter turn of canvas and layers.",
          {needed(choice("to", {"left", "right"}))}},
         runRotateCanvas},
        {{"background", "The colour behind all layers.", {needed(color("colour"))}}, runBackground},
        {{"view",
          "How the canvas is looked at: strokes come in places of the view.",
          {pixels("x"), pixels("y"), number("scale", 0.01, 100.0),
           number("rotation", -360.0, 360.0)}},
         runView},
        {{"save",
          "The picture of all layers, through the helper process.",
          {needed(file("file")), integer("quality", 0, 100)}},
         runSave},
        {{"wait", "Time passes, and timers ring.", {needed(integer("milliseconds", 0, 60000))}},
         runWait},
        {{"note", "Words for whoever follows the run.", {needed(text("text"))}}, runNote},
    };
}

}  // namespace brushwork::tools
