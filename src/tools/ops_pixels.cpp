#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

// The layer of the operation, whose pixels may be changed.
Problem paintLayerOf(const JournalSession& session, const Operation& op, std::int32_t& id) {
    if (auto problem = session.layerOf(op, id)) return problem;
    const PaintManager& paint = session.paint;
    if (paint.inStroke()) return strokeIsOpen;
    if (paint.isGroup(id)) return "the layer is a group";
    if (paint.isShapeLayer(id)) return "the layer is made of shapes";
    return problemUnless(!paint.isLocked(id), "the layer is locked");
}

// The same, of four channels.
Problem colourLayerOf(const JournalSession& session, const Operation& op, std::int32_t& id) {
    if (auto problem = paintLayerOf(session, op, id)) return problem;
    return problemUnless(!session.paint.isMask(id) && !session.paint.isStencil(id),
                         "the layer is a mask");
}

// A paint layer, and it is the active one.
Problem enterPaintLayer(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = paintLayerOf(session, op, id)) return problem;
    return session.enter(op);
}

Problem runClear(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (op.has("box")) {
        if (auto problem = paintLayerOf(session, op, id)) return problem;
        session.paint.clearRegion(op.box("box"), id);
        return std::nullopt;
    }
    if (auto problem = enterPaintLayer(session, op)) return problem;
    session.paint.clearLayer();
    return std::nullopt;
}

Problem runFill(JournalSession& session, const Operation& op) {
    if (auto problem = enterPaintLayer(session, op)) return problem;
    if (!op.has("file")) {
        session.paint.fillLayer(op.color("colour", session.paint.color()));
        return std::nullopt;
    }
    ImageRef image;
    if (auto problem = session.picture(op, "file", PictureUse::Colors, image)) return problem;
    session.paint.fillWithImage(image);
    return std::nullopt;
}

template <class Work>
Problem onLayer(JournalSession& session, const Operation& op, const Work& work) {
    std::int32_t id = -1;
    if (auto problem = paintLayerOf(session, op, id)) return problem;
    work(session.paint, id);
    return std::nullopt;
}

Problem runInvert(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = paintLayerOf(session, op, id)) return problem;
    if (!session.paint.isMask(id)) return "the layer is not a mask";
    session.paint.invertMask(id);
    return std::nullopt;
}

Problem runFlip(JournalSession& session, const Operation& op) {
    const std::int32_t way = op.choice("way");
    return onLayer(session, op, [&](PaintManager& paint, std::int32_t id) {
        paint.flipLayer(way != 1, way != 0, id);
    });
}

Problem runTurn(JournalSession& session, const Operation& op) {
    const bool right = op.choice("to") == 1;
    return onLayer(session, op,
                   [&](PaintManager& paint, std::int32_t id) { paint.rotateLayer(right, id); });
}

Problem convolve(JournalSession& session, const Operation& op,
                 const PixelFamily::ConvolveParams& params) {
    std::int32_t id = -1;
    if (auto problem = colourLayerOf(session, op, id)) return problem;
    session.paint.applyConvolve(params, id);
    return std::nullopt;
}

Problem runBlur(JournalSession& session, const Operation& op) {
    PixelFamily::ConvolveParams params;
    params.radius = op.number("radius", params.radius);
    return convolve(session, op, params);
}

Problem runSharpen(JournalSession& session, const Operation& op) {
    PixelFamily::ConvolveParams params;
    params.sharpen = true;
    params.strength = op.number("strength", params.strength);
    params.detail = op.number("detail", params.detail);
    return convolve(session, op, params);
}

Problem runShrinkWrap(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = colourLayerOf(session, op, id)) return problem;
    if (auto problem = session.enter(op)) return problem;
    session.paint.shrinkWrap(op.color("colour"), op.number("blur"), op.number("tolerance"));
    return std::nullopt;
}

ColorAdjustParm adjustment(const Operation& op) {
    ColorAdjustParm parm;
    const std::int32_t tone = op.choice("tone", 3);
    const auto both = [](float value) { return ColorAdjustPair{value, value}; };
    switch (op.choice("kind")) {
        case 0: parm.reset(AdjustInvert); break;
        case 1:
        case 2:
            parm.setHsl(op.choice("kind") == 1 ? 2 : 0, both(op.number("hue")),
                        both(op.number("saturation")), both(op.number("lightness")));
            parm.colorizeAmount = op.number("amount", 1.0f);
            break;
        case 3:
            parm.reset(AdjustToneBalance);
            parm.addToneBalance(tone, op.number("lightness"), op.number("saturation"));
            break;
        case 4:
            parm.reset(AdjustToneGain);
            parm.addToneGain(tone, op.number("saturation"), op.number("lightness"));
            break;
        default:
            parm.reset(AdjustTint);
            parm.mixToneTint(tone, op.choice("primary"), op.number("amount", 1.0f));
            break;
    }
    return parm;
}

Problem runAdjust(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    return problemUnless(session.paint.colorAdjust(ImageRef(), adjustment(op)),
                         "the layer can't be adjusted");
}

Problem runFlood(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    const auto at = op.point("at");
    if (!session.paint.floodFill(at[0], at[1], op.color("colour", session.paint.color()),
                                 op.number("tolerance"), id))
        return "nothing can be filled there";
    if (!op.flag("open")) session.paint.endFill();
    return std::nullopt;
}

Problem runFloodChange(JournalSession& session, const Operation& op) {
    return problemUnless(session.paint.continueFill(op.number("tolerance")), "no fill is open");
}

Problem runFloodEnd(JournalSession& session, const Operation&) {
    return problemUnless(session.paint.endFill(), "no fill is open");
}

Problem runGradient(JournalSession& session, const Operation& op) {
    std::int32_t id = -1;
    if (auto problem = session.layerOf(op, id)) return problem;
    FillFamily::Gradient gradient;
    const auto from = op.point("from"), to = op.point("to");
    gradient.fromX = from[0];
    gradient.fromY = from[1];
    gradient.toX = to[0];
    gradient.toY = to[1];
    gradient.fromColor = op.color("from_colour", gradient.fromColor);
    gradient.toColor = op.color("to_colour", gradient.toColor);
    gradient.radial = op.flag("radial");
    gradient.dither = op.flag("dither", true);
    return problemUnless(session.paint.fillGradient(gradient, id), "the layer can't be filled");
}

}  // namespace

std::vector<OpRow> pixelOps() {
    return {
        {{"clear",
          "Empties a layer, or a box of it in its own pixels; the only layer takes the background.",
          {layer(), box("box")}},
         runClear},
        {{"fill",
          "A colour, or a picture file, over a layer where it is selected.",
          {layer(), color("colour"), file("file")}},
         runFill},
        {{"invert", "Turns a mask over.", {layer()}}, runInvert},
        {{"flip",
          "Mirrors a layer.",
          {layer(), needed(choice("way", {"horizontal", "vertical", "both"}))}},
         runFlip},
        {{"turn", "A quarter turn of a layer.", {layer(), needed(choice("to", {"left", "right"}))}},
         runTurn},
        {{"blur", "Softens a layer.", {layer(), number("radius", 0.1, 100.0)}}, runBlur},
        {{"sharpen",
          "Sharpens a layer.",
          {layer(), number("strength", 0.0, 100.0), number("detail", 0.1, 100.0)}},
         runSharpen},
        {{"shrink_wrap",
          "A halo of a colour around what a layer holds.",
          {layer(), needed(color("colour")), number("blur", 0.0, 100.0), share("tolerance")}},
         runShrinkWrap},
        {{"adjust",
          "Changes the colours of a layer where it is selected.",
          {layer(),
           needed(choice("kind", {"invert", "shift", "colourise", "balance", "gain", "tint"})),
           choice("tone", {"highlights", "midtones", "shadows", "all"}),
           choice("primary", {"red", "yellow", "green", "cyan", "blue", "magenta"}),
           number("hue", -360.0, 360.0), number("saturation", -10.0, 10.0),
           number("lightness", -10.0, 10.0), share("amount")}},
         runAdjust},
        {{"flood",
          "Fills from a place on as far as colours are alike.",
          {layer(), needed(point("at")), color("colour"), share("tolerance"), flag("open")}},
         runFlood},
        {{"flood_change", "Another tolerance for the open fill.", {needed(share("tolerance"))}},
         runFloodChange},
        {{"flood_end", "Closes the open fill.", {}}, runFloodEnd},
        {{"gradient",
          "From one colour to another over the canvas, where it is selected.",
          {layer(), needed(point("from")), needed(point("to")), color("from_colour"),
           color("to_colour"), flag("radial"), flag("dither")}},
         runGradient},
    };
}

}  // namespace brushwork::tools
