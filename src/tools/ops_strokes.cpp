#include <algorithm>
#include <cmath>
#include <utility>

#include "tools/op_row.h"
#include "tools/pen_session.h"

namespace brushwork::tools {
namespace {

constexpr const char* notPaintable =
    "the layer can't be painted on: it is hidden, locked, a group or made of shapes";

Problem begin(JournalSession& session) {
    if (session.paint.inStroke()) return strokeIsOpen;
    if (!session.paint.beginStroke()) return notPaintable;
    ++session.figures.strokes;
    return std::nullopt;
}

void add(JournalSession& session, std::span<const StrokeInputPoint> points) {
    session.paint.addPoints(points);
    session.figures.points += points.size();
}

// A stroke with the current brush, or along a curve.
Problem paintStroke(JournalSession& session, std::span<const StrokeInputPoint> points,
                    const ReferenceCurve* guide, bool cancel) {
    if (guide) {
        StrokeParameters guided = session.brush.stroke;
        guided.interpolationKind = 2;
        guided.guide = makeRef<GuideCurve>(guide->copy().release());
        session.paint.setBrush(session.brush.brush, guided);
    }
    const Problem problem = begin(session);
    if (!problem) {
        add(session, points);
        if (cancel)
            session.paint.cancelStroke();
        else
            session.paint.endStroke();
    }
    if (guide) session.paint.setBrush(session.brush.brush, session.brush.stroke);
    return problem;
}

const ReferenceCurve* curveOf(const JournalSession& session, const Operation& op,
                              const std::string& field) {
    return op.has(field) ? session.curves.at(op.text(field)).get() : nullptr;
}

// With points in between, so that none is further than the distance from the next. A pen sends
// many, and smoothing follows the last few of them at some distance.
std::vector<StrokeInputPoint> filledIn(std::vector<StrokeInputPoint> points, double distance) {
    constexpr double mostPieces = 10000.0;
    if (!(distance > 0.0) || points.empty()) return points;
    std::vector<StrokeInputPoint> all{points.front()};
    for (std::size_t n = 1; n < points.size(); ++n) {
        const StrokeInputPoint &from = points[n - 1], &to = points[n];
        const double length = std::hypot(static_cast<double>(to.x) - static_cast<double>(from.x),
                                         static_cast<double>(to.y) - static_cast<double>(from.y));
        const double pieces = std::clamp(std::ceil(length / distance), 1.0, mostPieces);
        for (double piece = 1.0; piece <= pieces; piece += 1.0) {
            const auto part = static_cast<float>(piece / pieces);
            StrokeInputPoint point;
            point.x = from.x + (to.x - from.x) * part;
            point.y = from.y + (to.y - from.y) * part;
            point.pressure = from.pressure + (to.pressure - from.pressure) * part;
            all.push_back(point);
        }
    }
    return all;
}

Problem runStroke(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    return paintStroke(session, filledIn(op.points("points"), op.real("every", 0.0)),
                       curveOf(session, op, "along"), op.flag("cancel"));
}

float pressureAt(const std::vector<float>& three, float part) {
    if (three.empty()) return 1.0f;
    const std::size_t n = part < 0.5f ? 0 : 1;
    return three[n] + (three[n + 1] - three[n]) * (2.0f * part - static_cast<float>(n));
}

// From one end of a curve to the other, a point every few pixels.
Problem runTrace(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    constexpr double pixelsPerPoint = 4.0;
    constexpr double mostPoints = 100000.0;
    ReferenceCurve& curve = *session.curves.at(op.text("curve"));
    const double length = curve.arc().length();
    const auto count =
        static_cast<std::int32_t>(std::clamp(length / pixelsPerPoint, 2.0, mostPoints));
    const std::vector<float> pressures = op.numbers("pressures");
    std::vector<StrokeInputPoint> points;
    for (std::int32_t n = 0; n <= count; ++n) {
        const float part = static_cast<float>(n) / static_cast<float>(count);
        double x = 0.0, y = 0.0;
        if (!hostCallTable().curvePoint(&curve, length * n / count, &x, &y)) continue;
        StrokeInputPoint point;
        point.x = static_cast<float>(x);
        point.y = static_cast<float>(y);
        point.pressure = pressureAt(pressures, part);
        points.push_back(point);
    }
    return paintStroke(session, points, op.flag("free") ? nullptr : &curve, false);
}

Problem runBeginStroke(JournalSession& session, const Operation& op) {
    if (session.paint.inStroke()) return strokeIsOpen;
    if (auto problem = session.enter(op)) return problem;
    return begin(session);
}

Problem runPoints(JournalSession& session, const Operation& op) {
    if (!session.paint.inStroke()) return "no stroke is open";
    add(session, op.points("points"));
    return std::nullopt;
}

Problem runEndStroke(JournalSession& session, const Operation&) {
    if (!session.paint.inStroke()) return "no stroke is open";
    session.paint.endStroke();
    return std::nullopt;
}

Problem runCancelStroke(JournalSession& session, const Operation&) {
    if (!session.paint.inStroke()) return "no stroke is open";
    session.paint.cancelStroke();
    return std::nullopt;
}

Problem runLine(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    const auto from = op.point("from"), to = op.point("to");
    ++session.figures.strokes;
    return problemUnless(
        session.paint.strokeLine(from[0], from[1], to[0], to[1], op.number("pressure", 1.0f)),
        notPaintable);
}

Problem runPolyline(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    std::vector<StrokePointData> places;
    for (const StrokeInputPoint& point : op.points("points"))
        places.emplace_back(point.x, point.y, point.pressure);
    ++session.figures.strokes;
    return problemUnless(session.paint.strokePolyline(places), notPaintable);
}

// How places of a recording become places of the canvas.
struct PenPlacing {
    float scale = 1.0f, x = 0.0f, y = 0.0f, gain = 1.0f;
    float top = 0.0f;  // the recording's y counts downward from here; 0: upward from below

    [[nodiscard]] StrokeInputPoint operator()(const PenEvent& event) const {
        StrokeInputPoint point;
        point.x = x + scale * event.x;
        point.y = top > 0.0f ? top - y - scale * event.y : y + scale * event.y;
        point.pressure = std::min(gain * event.pressure, 1.0f);
        return point;
    }
};

Problem playStroke(JournalSession& session, const std::vector<PenEvent>& events,
                   const PenPlacing& place, bool timed) {
    if (auto problem = begin(session)) return problem;
    double last = events.front().seconds;
    for (const PenEvent& event : events) {
        if (timed) session.host.timers().wait(std::llround(1000.0 * (event.seconds - last)));
        last = event.seconds;
        const StrokeInputPoint point = place(event);
        add(session, {&point, 1});
    }
    session.paint.endStroke();
    return std::nullopt;
}

Problem runPen(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    PenSession pen;
    PenFault fault;
    if (!readPenSession(session.pathOf(op.text("file")), pen, fault))
        return op.text("file") + (fault.line > 0 ? ":" + std::to_string(fault.line) : "") + ": " +
               fault.cause;
    const double from = op.real("from", 0.0), to = op.real("to", 1e300);
    std::erase_if(pen.events, [&](const PenEvent& event) {
        return event.seconds < from || event.seconds > to;
    });
    const ilTile canvas = session.paint.canvasBounds(activeOne);
    const PenPlacing place{op.number("scale", 1.0f), op.number("x"), op.number("y"),
                           op.number("pressure", 1.0f),
                           op.flag("upward") ? 0.0f : static_cast<float>(canvas.ny)};
    for (const std::vector<PenEvent>& events : pen.strokes())
        if (auto problem = playStroke(session, events, place, op.flag("timed"))) return problem;
    return std::nullopt;
}

}  // namespace

std::vector<OpRow> strokeOps() {
    return {
        {{"stroke",
          "A stroke through points of the pen.",
          {layer(), needed(points("points")), number("every", 0.5, 1000.0),
           nameOf("along", NameOf::Curve), flag("cancel")}},
         runStroke},
        {{"trace",
          "A stroke along a whole curve.",
          {layer(), needed(nameOf("curve", NameOf::Curve)), numbers("pressures", 3, 0.0, 1.0),
           flag("free")}},
         runTrace},
        {{"begin_stroke", "Opens a stroke, for points that come one by one.", {layer()}},
         runBeginStroke},
        {{"points", "Points for the open stroke.", {needed(points("points"))}}, runPoints},
        {{"end_stroke", "Closes the open stroke.", {}}, runEndStroke},
        {{"cancel_stroke", "Drops the open stroke: all is as before it.", {}}, runCancelStroke},
        {{"line",
          "A straight stroke, in pixels of the layer.",
          {layer(), needed(point("from")), needed(point("to")), share("pressure")}},
         runLine},
        {{"polyline",
          "A stroke straight from point to point, in pixels of the layer.",
          {layer(), needed(points("points"))}},
         runPolyline},
        {{"pen",
          "The strokes of a recorded pen.",
          {layer(), needed(file("file")), number("scale", 0.001, 1000.0), pixels("x"), pixels("y"),
           number("pressure", 0.01, 100.0), number("from", 0.0, 1e9), number("to", 0.0, 1e9),
           flag("upward"), flag("timed")}},
         runPen},
    };
}

}  // namespace brushwork::tools
