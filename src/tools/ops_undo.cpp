#include "tools/op_row.h"

namespace brushwork::tools {
namespace {

// A transform that is still shown is kept first.
Problem settle(JournalSession& session) {
    if (session.paint.inStroke()) return strokeIsOpen;
    session.paint.endTransform(true);
    session.paint.endFill();
    return std::nullopt;
}

template <class Step>
Problem walk(JournalSession& session, const Operation& op, std::size_t levels, std::uint64_t& count,
             const Step& step) {
    if (auto problem = settle(session)) return problem;
    const auto wanted = op.flag("all") ? levels : static_cast<std::size_t>(op.integer("steps", 1));
    if (wanted > levels)
        return "there are only " + std::to_string(levels) + " steps of that way to go";
    bool redraw = false;
    for (std::size_t n = 0; n < wanted; ++n) redraw = step().redraw || redraw;
    count += wanted;
    if (redraw) session.paint.present(activeOne);
    return std::nullopt;
}

Problem runUndo(JournalSession& session, const Operation& op) {
    return walk(session, op, session.undo.undoLevels(), session.figures.undone,
                [&] { return session.undo.undo(); });
}

Problem runRedo(JournalSession& session, const Operation& op) {
    return walk(session, op, session.undo.redoLevels(), session.figures.redone,
                [&] { return session.undo.redo(); });
}

Problem runLimit(JournalSession& session, const Operation& op) {
    session.undo.setLimit(static_cast<std::size_t>(op.integer("levels")));
    return std::nullopt;
}

Problem runForget(JournalSession& session, const Operation&) {
    if (session.paint.inStroke()) return strokeIsOpen;
    session.paint.clearUndo();
    return std::nullopt;
}

Problem runLock(JournalSession& session, const Operation& op) {
    session.paint.lockUndo(op.flag("on"));
    return std::nullopt;
}

Problem runBeginLevel(JournalSession& session, const Operation& op) {
    session.undo.beginLevel(op.text("title"));
    return std::nullopt;
}

Problem runEndLevel(JournalSession& session, const Operation&) {
    if (!session.undo.inLevel()) return "no step is open";
    session.undo.endLevel();
    return std::nullopt;
}

}  // namespace

std::vector<OpRow> undoOps() {
    const FieldRule steps = integer("steps", 1, 1000000), all = flag("all");
    return {
        {{"undo", "Takes steps back: all of what an operation did is one.", {steps, all}},
         runUndo,
         false},
        {{"redo", "Does steps again.", {steps, all}}, runRedo, false},
        {{"undo_limit",
          "How many steps are kept at most; 0: any number.",
          {needed(integer("levels", 0, 1000000))}},
         runLimit,
         false},
        {{"forget_undo", "Keeps all as it is and forgets the steps.", {}}, runForget, false},
        {{"lock_undo", "Whether operations are kept from becoming steps.", {needed(flag("on"))}},
         runLock,
         false},
        {{"begin_step", "What follows, up to end_step, is one step.", {text("title")}},
         runBeginLevel,
         false},
        {{"end_step", "Ends what begin_step began.", {}}, runEndLevel, false},
    };
}

}  // namespace brushwork::tools
