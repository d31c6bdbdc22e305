#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

TransformRecord recordOf(const Operation& op) {
    TransformRecord record;
    record.x = op.number("x");
    record.y = op.number("y");
    const auto scale = op.numbers("scale");
    if (!scale.empty()) {
        record.scaleX = scale[0];
        record.scaleY = scale[1];
    }
    record.rotation = op.number("rotation");
    const auto pivot = op.point("pivot");
    record.pivotX = pivot[0];
    record.pivotY = pivot[1];
    const auto corners = op.numbers("corners");
    for (std::size_t n = 0; n < corners.size(); ++n) record.corners[n] = corners[n];
    return record;
}

Problem begin(JournalSession& session, const Operation& op) {
    std::vector<std::int32_t> ids;
    if (auto problem = session.layersOf(op, ids)) return problem;
    return problemUnless(session.paint.beginTransform(ids), "these layers can't be transformed");
}

Problem runTransform(JournalSession& session, const Operation& op) {
    if (auto problem = begin(session, op)) return problem;
    const bool done = session.paint.updateTransform(recordOf(op));
    return problemUnless(session.paint.endTransform(true) && done,
                         "these layers can't be transformed");
}

Problem runChangeTransform(JournalSession& session, const Operation& op) {
    return problemUnless(session.paint.updateTransform(recordOf(op)), "no transform is open");
}

Problem runEndTransform(JournalSession& session, const Operation& op) {
    return problemUnless(session.paint.endTransform(op.flag("keep", true)), "no transform is open");
}

Problem runLift(JournalSession& session, const Operation& op) {
    if (auto problem = session.enter(op)) return problem;
    const std::int32_t id = session.paint.newTemporaryLayer();
    if (id < 0) return "nothing is selected there";
    if (op.has("as")) session.layers[op.text("as")] = id;
    return std::nullopt;
}

std::vector<FieldRule> placing(std::vector<FieldRule> fields) {
    const std::vector<FieldRule> place{pixels("x"),
                                       pixels("y"),
                                       numbers("scale", 2, -1000.0, 1000.0),
                                       number("rotation", -36000.0, 36000.0),
                                       point("pivot"),
                                       numbers("corners", 8, -farthest, farthest)};
    fields.insert(fields.end(), place.begin(), place.end());
    return fields;
}

}  // namespace

std::vector<OpRow> transformOps() {
    const FieldRule layers = namesOf("layers", NameOf::Layer);
    return {
        {{"transform", "Moves, scales, turns or bends layers, at once.", placing({layers})},
         runTransform},
        {{"begin_transform", "Opens a transform that is shown as it changes.", {layers}}, begin},
        {{"change_transform", "The open transform as it is now.", placing({})}, runChangeTransform},
        {{"end_transform", "Keeps the open transform, or drops it.", {flag("keep")}},
         runEndTransform},
        {{"lift",
          "What is selected, off the layer onto one of its own above it.",
          {layer(), newName("as", NameOf::Layer)}},
         runLift},
    };
}

}  // namespace brushwork::tools
