#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

std::string hashText(JournalSession& session) {
    return session.digestText("");
}

Problem runHash(JournalSession& session, const Operation& op) {
    if (!session.paint.hasCanvas(activeOne)) return noCanvas;
    const std::string text = hashText(session);
    if (op.has("as")) session.hashes[op.text("as")] = text;
    if (session.print && !op.flag("quiet"))
        session.print("hash " + op.text("as", std::to_string(op.line())) + "\n" + text);
    return std::nullopt;
}

Problem runExpectHash(JournalSession& session, const Operation& op) {
    const std::string& wanted = session.hashes.at(op.text("as"));
    const std::string found = hashText(session);
    if (found == wanted) return std::nullopt;
    return "the document differs from \"" + op.text("as") + "\"\nwanted\n" + wanted + "\nfound\n" +
           found;
}

using Pixel = std::array<std::int32_t, 4>;

Pixel pixelOf(std::uint32_t packed) {
    Pixel pixel;
    for (std::size_t n = 0; n < 4; ++n)
        pixel[n] = static_cast<std::int32_t>(packed >> (8 * n) & 0xFF);
    return pixel;
}

// Premultiplied, as the engine has it.
Pixel pixelOf(const std::array<float, 4>& color) {
    Pixel pixel;
    for (std::size_t n = 0; n < 4; ++n)
        pixel[n] =
            static_cast<std::int32_t>(std::lround(255.0f * color[n] * (n < 3 ? color[3] : 1.0f)));
    return pixel;
}

std::string textOf(const Pixel& pixel) {
    char text[64];
    std::snprintf(text, sizeof text, "%d %d %d %d", pixel[0], pixel[1], pixel[2], pixel[3]);
    return text;
}

Problem runExpectPixel(JournalSession& session, const Operation& op) {
    const auto at = op.point("at");
    const auto x = static_cast<std::int32_t>(std::floor(at[0]));
    const auto y = static_cast<std::int32_t>(std::floor(at[1]));
    std::uint32_t packed = 0;
    if (op.has("layer")) {
        std::int32_t id = -1;
        if (auto problem = session.layerOf(op, id)) return problem;
        if (!session.paint.layerPixel(id, x, y, &packed)) return "the layer has no such pixel";
    } else if (!session.paint.canvasPixel(x, y, &packed)) {
        return "the canvas has no such pixel";
    }
    const Pixel wanted = pixelOf(op.color("colour")), found = pixelOf(packed);
    const std::int32_t tolerance = op.integer("tolerance", 2);
    for (std::size_t n = 0; n < 4; ++n)
        if (std::abs(wanted[n] - found[n]) > tolerance)
            return "the pixel is " + textOf(found) + " (premultiplied bytes), not " +
                   textOf(wanted);
    return std::nullopt;
}

std::int64_t countOf(const JournalSession& session, std::int32_t what, std::int32_t layerId) {
    const PaintManager& paint = session.paint;
    switch (what) {
        case 0: return paint.layerCount();
        case 1: return paint.canvasCount();
        case 2: return static_cast<std::int64_t>(session.undo.undoLevels());
        case 3: return static_cast<std::int64_t>(session.undo.redoLevels());
        case 4: return paint.shapeCount(layerId);
        case 5: return paint.groupMemberCount(layerId);
        case 6: return paint.canvasBounds(activeOne).nx;
        default: return paint.canvasBounds(activeOne).ny;
    }
}

Problem runExpectCount(JournalSession& session, const Operation& op) {
    std::int32_t id = activeOne;
    if (op.has("layer"))
        if (auto problem = session.layerOf(op, id)) return problem;
    const std::int64_t found = countOf(session, op.choice("of"), id);
    if (found == op.integer("is")) return std::nullopt;
    return op.text("of") + ": " + std::to_string(found) + ", not " +
           std::to_string(op.integer("is"));
}

Problem differs(const char* what) {
    return std::string("the layer differs in \"") + what + "\"";
}

Problem runExpectLayer(JournalSession& session, const Operation& op) {
    const PaintManager& paint = session.paint;
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    for (const auto& [field, value] :
         {std::pair("visible", paint.isVisible(id)), std::pair("locked", paint.isLocked(id)),
          std::pair("enabled", paint.isEnabled(id)), std::pair("group", paint.isGroup(id)),
          std::pair("mask", paint.isMask(id)), std::pair("shapes", paint.isShapeLayer(id)),
          std::pair("active", id == paint.activeLayerId())})
        if (op.has(field) && op.flag(field) != value) return differs(field);
    if (op.has("opacity") && std::abs(op.number("opacity") - paint.opacity(id)) > 0.001f)
        return differs("opacity");
    if (op.has("mode") && op.mode("mode") != paint.blendMode(id)) return differs("mode");
    if (op.has("title") && op.text("title") != paint.layerName(id).toUtf8())
        return "the layer's title is \"" + paint.layerName(id).toUtf8() + "\"";
    if (op.has("index") && op.integer("index") != paint.layerIndexOf(id))
        return "the layer's number is " + std::to_string(paint.layerIndexOf(id));
    std::int32_t group = -1;
    if (op.has("in")) {
        if (auto problem = session.layerOf(op, group, "in")) return problem;
        if (paint.groupOf(id) != group) return differs("in");
    }
    ilTile box;
    const bool holdsPixels = paint.layerBounds(id, box);
    if (op.has("blank") && op.flag("blank") == holdsPixels) return differs("blank");
    if (op.has("bounds") && !(holdsPixels && box == op.box("bounds")))
        return "the layer's pixels lie in " + std::to_string(box.x) + ", " + std::to_string(box.y) +
               ", " + std::to_string(box.nx) + " x " + std::to_string(box.ny);
    return std::nullopt;
}

Problem runExpectSelection(JournalSession& session, const Operation& op) {
    if (op.has("any") && op.flag("any") != session.paint.hasSelection())
        return session.paint.hasSelection() ? "something is selected" : "nothing is selected";
    if (!op.has("bounds")) return std::nullopt;
    ilTile box;
    if (session.paint.selectionBounds(box) && box == op.box("bounds")) return std::nullopt;
    return "the selection lies in " + std::to_string(box.x) + ", " + std::to_string(box.y) + ", " +
           std::to_string(box.nx) + " x " + std::to_string(box.ny);
}

Problem runExpectMessage(JournalSession& session, const Operation& op) {
    const std::string part = op.text("holds");
    const bool found =
        std::any_of(session.messages.begin(), session.messages.end(),
                    [&](const std::string& all) { return all.find(part) != std::string::npos; });
    return problemUnless(found, "the engine said nothing of the kind");
}

}  // namespace

std::vector<OpRow> checkOps() {
    return {
        {{"hash",
          "Prints digests of all layers and of the document, and keeps them by a name.",
          {newName("as", NameOf::Hash), flag("quiet")}},
         runHash,
         false},
        {{"expect_hash",
          "The document is the same as it was then.",
          {needed(nameOf("as", NameOf::Hash))}},
         runExpectHash,
         false},
        {{"expect_pixel",
          "A pixel of the canvas, or of a layer in its own pixels.",
          {needed(point("at")), needed(color("colour")), integer("tolerance", 0, 255), layer()}},
         runExpectPixel,
         false},
        {{"expect_count",
          "A number of things.",
          {needed(choice("of", {"layers", "canvases", "undo", "redo", "shapes", "members", "width",
                                "height"})),
           needed(integer("is", 0, 1000000000)), layer()}},
         runExpectCount,
         false},
        {{"expect_layer",
          "Attributes of a layer.",
          {layer(), flag("visible"), flag("locked"), flag("enabled"), flag("group"), flag("mask"),
           flag("shapes"), flag("active"), flag("blank"), share("opacity"), blendMode("mode", true),
           text("title"), integer("index", 0, 1000000), nameOf("in", NameOf::Layer),
           box("bounds")}},
         runExpectLayer,
         false},
        {{"expect_selection",
          "Whether anything is selected, and where.",
          {flag("any"), box("bounds")}},
         runExpectSelection,
         false},
        {{"expect_message",
          "The last thing that the engine had to say to the user.",
          {needed(text("holds"))}},
         runExpectMessage,
         false},
    };
}

}  // namespace brushwork::tools
