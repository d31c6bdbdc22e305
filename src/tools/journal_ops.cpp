#include "tools/journal_ops.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace brushwork::tools {
namespace {

const std::vector<OpRow>& table() {
    static const std::vector<OpRow> rows = [] {
        std::vector<OpRow> all;
        for (auto family :
             {canvasOps(), layerOps(), pixelOps(), selectionOps(), brushOps(), strokeOps(),
              shapeOps(), transformOps(), undoOps(), frameOps(), checkOps()})
            all.insert(all.end(), std::make_move_iterator(family.begin()),
                       std::make_move_iterator(family.end()));
        return all;
    }();
    return rows;
}

const OpRow* rowOf(std::string_view name) {
    const auto found = std::find_if(table().begin(), table().end(),
                                    [&](const OpRow& row) { return row.rules.name == name; });
    return found == table().end() ? nullptr : &*found;
}

// Most of what is refused within a stroke is refused because of it.
void tellOfStroke(const JournalSession& session, Problem& problem) {
    if (problem && session.paint.inStroke() && problem->find(strokeIsOpen) == std::string::npos)
        *problem += std::string(" (") + strokeIsOpen + ")";
}

Problem carryOut(JournalSession& session, const OpRow& row, const Operation& op) {
    if (row.isLevel) session.undo.beginLevel(op.name());
    Problem problem = row.run(session, op);
    if (row.isLevel) {
        session.undo.endLevel();
        tellOfStroke(session, problem);
    }
    std::vector<std::string> said = session.host.takeMessages();
    if (!said.empty()) session.messages = std::move(said);
    return problem;
}

}  // namespace

std::span<const OpRow> allOps() {
    return table();
}

const OpBook& opBook() {
    static const OpBook book = [] {
        OpBook made;
        made.find = [](std::string_view name) -> const OpRules* {
            const OpRow* const row = rowOf(name);
            return row ? &row->rules : nullptr;
        };
        for (const OpRow& row : table()) made.names.push_back(row.rules.name);
        return made;
    }();
    return book;
}

Problem runOperation(JournalSession& session, const Operation& op) {
    const OpRow* const row = rowOf(op.name());
    if (!row) return "there is no such operation";
    const Problem problem = carryOut(session, *row, op);
    if (!op.flag("fails")) return problem;
    return problemUnless(problem.has_value(), "it should have failed, and didn't");
}

}  // namespace brushwork::tools
