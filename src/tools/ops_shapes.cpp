#include <utility>

#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

enum CurveKind { Straight, Smooth, Bezier, Ellipse, Box };

std::vector<ReferenceCurve::Place> placesOf(const Operation& op) {
    std::vector<ReferenceCurve::Place> places;
    for (const StrokeInputPoint& point : op.points("points")) places.push_back({point.x, point.y});
    return places;
}

std::vector<ReferenceCurve::Place> cornersOf(const ilTile& box) {
    const auto at = [](std::int32_t x, std::int32_t y) {
        return ReferenceCurve::Place{static_cast<double>(x), static_cast<double>(y)};
    };
    return {at(box.x, box.y), at(box.endX(), box.y), at(box.endX(), box.endY()),
            at(box.x, box.endY())};
}

std::unique_ptr<ReferenceCurve> makeCurve(const Operation& op) {
    using Ends = ReferenceCurve::Ends;
    const Ends ends = op.flag("closed") ? Ends::Joined : Ends::Open;
    const auto centre = op.point("centre");
    const auto radii = op.numbers("radii");
    switch (op.choice("kind")) {
        case Straight: return ReferenceCurve::straight(placesOf(op), ends);
        case Smooth: return ReferenceCurve::smooth(placesOf(op), ends);
        case Bezier: return ReferenceCurve::bezier(placesOf(op));
        case Ellipse:
            if (radii.empty() || !op.has("centre")) return nullptr;
            return ReferenceCurve::ellipse({centre[0], centre[1]}, radii[0], radii[1]);
        default:
            if (!op.has("box")) return nullptr;
            return ReferenceCurve::straight(cornersOf(op.box("box")), Ends::Joined);
    }
}

Problem runCurve(JournalSession& session, const Operation& op) {
    auto curve = makeCurve(op);
    if (!curve)
        return "no curve can be made of that: straight and smooth take two points or more, bezier "
               "four, seven, ten ..., ellipse a centre and radii, box a box";
    session.curves[op.text("name")] = std::move(curve);
    return std::nullopt;
}

ShapeGradient gradientOf(const Operation& record) {
    ShapeGradient gradient;
    gradient.form =
        record.flag("radial") ? ShapeGradient::Form::Radial : ShapeGradient::Form::Linear;
    const auto from = record.point("from"), to = record.point("to");
    gradient.startX = from[0];
    gradient.startY = from[1];
    gradient.endX = to[0];
    gradient.endY = to[1];
    gradient.stops = {{0.0f, record.color("from_colour")},
                      {1.0f, record.color("to_colour", {1.0f, 1.0f, 1.0f, 1.0f})}};
    return gradient;
}

void changeParms(const Operation& op, ShapeImageParms& parms) {
    if (op.has("fill")) {
        parms.fillActive = true;
        parms.fillColor = op.color("fill");
    }
    if (op.has("fill_gradient")) {
        parms.fillActive = true;
        parms.setFillGradient(gradientOf(op.record("fill_gradient")));
    }
    if (op.has("filled")) parms.fillActive = op.flag("filled");
    if (op.has("line")) {
        const Operation line = op.record("line");
        parms.strokeActive = true;
        parms.stroke.color = line.color("colour", parms.stroke.color);
        parms.stroke.width = line.number("width", parms.stroke.width);
        parms.stroke.hardness = line.number("hardness", parms.stroke.hardness);
        parms.stroke.flow = line.number("flow", parms.stroke.flow);
        parms.stroke.spacing = line.number("spacing", parms.stroke.spacing);
    }
    parms.opacity = op.number("opacity", parms.opacity);
    parms.warpDensity = op.number("warp_density", parms.warpDensity);
}

Problem runShape(JournalSession& session, const Operation& op) {
    // On a canvas without layers there is none to enter: one is made.
    const bool isFirst =
        !op.has("layer") && session.paint.hasCanvas(activeOne) && session.paint.activeLayerId() < 0;
    if (!isFirst)
        if (auto problem = session.enter(op)) return problem;
    auto outline = std::make_unique<ReferenceShape>();
    for (const std::string& name : op.names("curves"))
        outline->curves.push_back(session.curves.at(name)->copy());
    const auto parms = makeRef<ShapeImageParms>();
    changeParms(op, *parms);
    session.shapeOutlines.push_back(std::move(outline));
    const std::int32_t id =
        session.paint.addShape(op.choice("kind"), session.shapeOutlines.back().get(), parms);
    if (id < 0) return "the shape can't go into that layer";
    if (op.has("name")) session.shapes[op.text("name")] = id;
    session.nameActive(op);
    return std::nullopt;
}

Problem runChangeShape(JournalSession& session, const Operation& op) {
    const std::int32_t id = session.shapes.at(op.text("shape"));
    const Ref<ShapeImageParms> parms = session.paint.shapeById(id);
    if (!parms) return "the shape is not there now";
    changeParms(op, *parms);
    return problemUnless(session.paint.shapeChanged(id), "the shape can't be changed");
}

Problem runMoveShape(JournalSession& session, const Operation& op) {
    return problemUnless(session.paint.moveShape(session.shapes.at(op.text("shape")),
                                                 op.number("x"), op.number("y")),
                         "the shape is not there now");
}

Problem runDeleteShapes(JournalSession& session, const Operation& op) {
    std::vector<std::int32_t> ids;
    for (const std::string& name : op.names("shapes")) ids.push_back(session.shapes.at(name));
    const bool done =
        ids.size() == 1 ? session.paint.deleteShape(ids[0]) : session.paint.deleteShapes(ids);
    return problemUnless(done, "the shapes are not there now");
}

std::vector<FieldRule> withLooks(std::vector<FieldRule> fields) {
    const std::vector<FieldRule> looks{
        color("fill"),
        flag("filled"),
        record("fill_gradient", {needed(point("from")), needed(point("to")), color("from_colour"),
                                 color("to_colour"), flag("radial")}),
        record("line", {color("colour"), number("width", 0.125, 1000.0), share("hardness"),
                        share("flow"), number("spacing", 0.05, 100.0)}),
        share("opacity"),
        number("warp_density", 0.5, 400.0)};
    fields.insert(fields.end(), looks.begin(), looks.end());
    return fields;
}

}  // namespace

std::vector<OpRow> shapeOps() {
    const FieldRule shape = needed(nameOf("shape", NameOf::Shape));
    return {
        {{"curve",
          "A curve, for shapes, guided strokes and selections.",
          {needed(newName("name", NameOf::Curve)),
           needed(choice("kind", {"straight", "smooth", "bezier", "ellipse", "box"})),
           points("points", 2), flag("closed"), point("centre"),
           numbers("radii", 2, 0.001, farthest), box("box")}},
         runCurve},
        {{"shape", "A shape on curves, in a layer of shapes; one is made if need be.",
          withLooks({layer(), newName("name", NameOf::Shape),
                     choice("kind", {"paint", "mask", "stencil", "warp"}),
                     needed(namesOf("curves", NameOf::Curve)), newName("as", NameOf::Layer)})},
         runShape},
        {{"change_shape", "Another look for a shape. Undo doesn't know of it.", withLooks({shape})},
         runChangeShape},
        {{"move_shape", "Moves a shape by a distance.", {shape, pixels("x"), pixels("y")}},
         runMoveShape},
        {{"delete_shapes", "Deletes shapes.", {needed(namesOf("shapes", NameOf::Shape))}},
         runDeleteShapes},
    };
}

}  // namespace brushwork::tools
