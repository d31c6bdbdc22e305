#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

znString::IString wide(const std::string& text) {
    return znString::IString(std::string_view(text));
}

// The index above which a layer goes: "above" a layer, at the "bottom" or "top", else above the
// active one.
Problem indexOf(const JournalSession& session, const Operation& op, std::int32_t& at) {
    at = activeOne;
    if (op.has("above")) {
        std::int32_t id = -1;
        if (auto problem = session.layerOf(op, id, "above")) return problem;
        at = session.paint.layerIndexOf(id);
    } else if (op.has("place")) {
        at = op.choice("place") == 0 ? 0 : session.paint.layerCount();
    }
    return std::nullopt;
}

std::vector<FieldRule> with(std::vector<FieldRule> fields) {
    fields.push_back(nameOf("above", NameOf::Layer));
    fields.push_back(choice("place", {"bottom", "top"}));
    return fields;
}

// Gives the new layer its name, in the script and in the document.
Problem name(JournalSession& session, const Operation& op, std::int32_t id) {
    if (id < 0) return session.paint.hasCanvas(activeOne) ? "no layer can be made there" : noCanvas;
    const std::string given = op.text("name");
    if (op.has("name")) session.layers[given] = id;
    const std::string title = op.text("title", given);
    if (!title.empty()) session.paint.setName(id, wide(title));
    return std::nullopt;
}

Problem runLayer(JournalSession& session, const Operation& op) {
    std::int32_t at = activeOne;
    if (auto problem = indexOf(session, op, at)) return problem;
    return name(session, op,
                session.paint.newLayer(at, op.choice("role"), op.integer("x"), op.integer("y")));
}

Problem runImageLayer(JournalSession& session, const Operation& op) {
    ImageRef image;
    const PictureUse use = op.flag("mask") ? PictureUse::Mask : PictureUse::Colors;
    if (auto problem = session.picture(op, "file", use, image)) return problem;
    return name(session, op, session.paint.newImageLayer(image, op.integer("x"), op.integer("y")));
}

Problem runShapeLayer(JournalSession& session, const Operation& op) {
    std::int32_t at = activeOne;
    if (auto problem = indexOf(session, op, at)) return problem;
    return name(session, op, session.paint.newShapeLayer(at, op.choice("kind")));
}

Problem runGroup(JournalSession& session, const Operation& op) {
    if (op.has("layers")) {
        std::vector<std::int32_t> ids;
        if (auto problem = session.layersOf(op, ids)) return problem;
        return name(session, op, session.paint.makeGroupFrom(ids));
    }
    std::int32_t at = activeOne;
    if (auto problem = indexOf(session, op, at)) return problem;
    return name(session, op, session.paint.newGroup(wide(op.text("name", "Group")), at));
}

Problem runUngroup(JournalSession& session, const Operation& op) {
    std::vector<std::int32_t> ids;
    if (auto problem = session.layersOf(op, ids)) return problem;
    return problemUnless(session.paint.ungroup(ids, op.flag("keep")), "there is no group there");
}

Problem runDelete(JournalSession& session, const Operation& op) {
    std::vector<std::int32_t> ids;
    if (auto problem = session.layersOf(op, ids)) return problem;
    return problemUnless(session.paint.deleteLayers(ids), "these layers can't be deleted");
}

Problem runClearLayers(JournalSession& session, const Operation& op) {
    if (!session.paint.clearLayers()) return noCanvas;
    session.nameActive(op);
    return std::nullopt;
}

Problem runFlatten(JournalSession& session, const Operation& op) {
    if (!session.paint.flattenAll(activeOne, op.flag("visible_only")))
        return "there is nothing to flatten";
    session.nameActive(op);
    return std::nullopt;
}

Problem runMergeVisible(JournalSession& session, const Operation& op) {
    if (!session.paint.mergeVisible()) return "there is nothing to merge";
    session.nameActive(op);
    return std::nullopt;
}

Problem runMergeDown(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    if (!session.paint.mergeDown(id)) return "the layer can't be merged with the one below";
    session.nameActive(op);
    return std::nullopt;
}

Problem runFlattenGroup(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    if (!session.paint.flattenGroup(id)) return "the layer is not a group";
    session.nameActive(op);
    return std::nullopt;
}

Problem runUseLayer(JournalSession& session, const Operation& op) {
    return session.enter(op);
}

Problem runMove(JournalSession& session, const Operation& op) {
    std::vector<std::int32_t> ids;
    std::int32_t at = 0, group = -1;
    if (auto problem = session.layersOf(op, ids)) return problem;
    if (auto problem = indexOf(session, op, at)) return problem;
    if (op.has("into")) {
        if (auto problem = session.layerOf(op, group, "into")) return problem;
        if (!session.paint.isGroup(group)) return "\"" + op.text("into") + "\" is not a group";
        const std::int32_t count = session.paint.groupMemberCount(group);
        if (at == activeOne)
            at = session.paint.layerIndexOf(count > 0 ? session.paint.groupChild(group, count - 1)
                                                      : group);
    }
    if (at == activeOne) at = session.paint.activeLayerIndex();
    return problemUnless(session.paint.moveLayers(ids, at, group), "layers can't be moved there");
}

Problem runDuplicate(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    const std::int32_t copy = session.paint.duplicateLayer();
    if (copy < 0) return "the layer can't be duplicated";
    if (op.has("as")) session.layers[op.text("as")] = copy;
    return std::nullopt;
}

Problem runNameLayer(JournalSession& session, const Operation& op) {
    if (!op.has("index")) {
        if (session.paint.activeLayerId() < 0) return "there is no active layer";
        session.nameActive(op);
        return std::nullopt;
    }
    const std::int32_t id = session.paint.layerIdAt(op.integer("index"));
    if (id < 0) return "there is no layer of that number";
    session.layers[op.text("as")] = id;
    return std::nullopt;
}

Problem runSet(JournalSession& session, const Operation& op) {
    PaintManager& paint = session.paint;
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    if (op.has("title")) paint.setName(id, wide(op.text("title")));
    if (op.has("visible")) paint.setVisible(id, op.flag("visible"));
    if (op.has("opacity")) paint.setOpacity(id, op.number("opacity"));
    if (op.has("mode")) paint.setBlendMode(id, op.mode("mode"));
    if (op.has("label")) paint.setLabelColor(id, static_cast<std::uint32_t>(op.integer("label")));
    if (op.has("enabled")) paint.setEnabled(id, op.flag("enabled"));
    if (op.has("expanded")) paint.setExpanded(id, op.flag("expanded"));
    if (op.has("x") || op.has("y")) {
        float x = 0.0f, y = 0.0f;
        static_cast<void>(paint.position(id, &x, &y));
        paint.setPosition(id, op.number("x", x), op.number("y", y), true, op.flag("unrestricted"));
    }
    if (op.has("locked")) paint.setLocked(id, op.flag("locked"));
    return std::nullopt;
}

Problem runLockAlpha(JournalSession& session, const Operation& op) {
    session.paint.setLockAlpha(op.flag("on"));
    return std::nullopt;
}

}  // namespace

std::vector<OpRow> layerOps() {
    const FieldRule name = newName("name", NameOf::Layer), as = newName("as", NameOf::Layer);
    const FieldRule x = integer("x", -1000000, 1000000), y = integer("y", -1000000, 1000000);
    return {
        {{"layer", "A new layer, above the active one; it is then the active one.",
          with({name, text("title"), choice("role", {"paint", "mask", "stencil"}), x, y})},
         runLayer},
        {{"image_layer",
          "A layer of a picture file; as a mask, of its lightness.",
          {name, text("title"), needed(file("file")), flag("mask"), x, y}},
         runImageLayer},
        {{"shape_layer", "A layer for shapes.",
          with({name, text("title"), choice("kind", {"paint", "mask", "stencil", "warp"})})},
         runShapeLayer},
        {{"group", "A group of layers, or an empty one.",
          with({name, text("title"), namesOf("layers", NameOf::Layer)})},
         runGroup},
        {{"ungroup",
          "Dissolves groups; with keep a blank layer stays in place of each.",
          {namesOf("layers", NameOf::Layer), flag("keep")}},
         runUngroup},
        {{"delete", "Deletes layers; one always stays.", {namesOf("layers", NameOf::Layer)}},
         runDelete},
        {{"clear_layers", "Deletes all layers; a blank one stays.", {as}}, runClearLayers},
        {{"flatten", "All layers into one.", {flag("visible_only"), as}}, runFlatten},
        {{"merge_visible", "All visible layers into one.", {as}}, runMergeVisible},
        {{"merge_down", "A layer into the one below it.", {layer(), as}}, runMergeDown},
        {{"flatten_group", "A group into one layer.", {layer(), as}}, runFlattenGroup},
        {{"use_layer", "Makes a layer the active one.", {needed(layer())}}, runUseLayer},
        {{"move", "Layers above another, to the bottom or top, or into a group.",
          with({namesOf("layers", NameOf::Layer), nameOf("into", NameOf::Layer)})},
         runMove},
        {{"duplicate", "A copy of a layer, above it.", {layer(), as}}, runDuplicate},
        {{"name_layer",
          "A name for the active layer, or for one by its number from below.",
          {needed(as), integer("index", 1, 1000000)}},
         runNameLayer},
        {{"set",
          "Attributes of a layer. Undo knows only of its place.",
          {layer(), text("title"), flag("visible"), share("opacity"), blendMode("mode", true),
           flag("locked"), integer("label", 0, 7), flag("enabled"), flag("expanded"), pixels("x"),
           pixels("y"), flag("unrestricted")}},
         runSet},
        {{"lock_alpha",
          "Whether painting keeps the alpha of what it paints on.",
          {needed(flag("on"))}},
         runLockAlpha},
    };
}

}  // namespace brushwork::tools
