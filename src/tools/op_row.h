// A row of the table of operations: the rules of its fields, and what carries it out.
#pragma once

#include <vector>

#include "tools/journal_session.h"
#include "tools/op_rules.h"

namespace brushwork::tools {

struct OpRow {
    OpRules rules;
    Problem (*run)(JournalSession& session, const Operation& op);
    // What it files becomes one level of undo. Not for operations on undo itself.
    bool isLevel = true;
};

// As noCanvas.
inline constexpr const char* strokeIsOpen = "a stroke is open";

[[nodiscard]] inline Problem problemUnless(bool done, const char* cause) {
    return done ? Problem() : Problem(cause);
}

// The families of operations.
[[nodiscard]] std::vector<OpRow> canvasOps();
[[nodiscard]] std::vector<OpRow> layerOps();
[[nodiscard]] std::vector<OpRow> pixelOps();
[[nodiscard]] std::vector<OpRow> selectionOps();
[[nodiscard]] std::vector<OpRow> brushOps();
[[nodiscard]] std::vector<OpRow> strokeOps();
[[nodiscard]] std::vector<OpRow> shapeOps();
[[nodiscard]] std::vector<OpRow> transformOps();
[[nodiscard]] std::vector<OpRow> undoOps();
[[nodiscard]] std::vector<OpRow> frameOps();
[[nodiscard]] std::vector<OpRow> checkOps();

}  // namespace brushwork::tools
