#include "undo/chain_collapse.h"

#include <algorithm>

#include "foundation/host/host_calls.h"
#include "foundation/services/log.h"
#include "undo/pnt_undo_combo.h"
#include "undo/pnt_undo_stroke.h"

namespace brushwork {
namespace {

constexpr std::int32_t undoLogs = 0x2016;

struct ChainTexts {
    const char* nothing;
    const char* noSource;
    const char* broken;
    const char* cannot;
};

// The differences between the two sets are old; hosts read these lines.
constexpr ChainTexts colorTexts{
    "Brushwork:Undo:Invalid ilImage (1)\n",
    "Invalid ilImage (missing seed image)\n",
    "Brushwork:Undo:Broken ilImage Chain\n",
    "Brushwork:Undo:Can't collapse seed image!\n",
};
constexpr ChainTexts stencilTexts{
    "Invalid ilImage (stencil)\n",
    "Brushwork:Undo: Invalid ilImage\n",
    "Broken ilImage Chain\n",
    "Brushwork:Undo:Can't collapse seed image\n",
};

void say(const char* text) {
    log("%s", text);
}

void fold(ilSmartImage* parent, ilSmartImage* child, const ChainTexts& texts) {
    if (!parent || !child) return say(texts.nothing);
    if (!ilSmartImage::from(parent->source())) say(texts.noSource);
    if (child->source() == parent) {
        if (!child->collapse()) say(texts.cannot);
    } else {
        say(texts.broken);
        parent->materialize(nullptr, true);
    }
}

bool holds(const PntUndoOper* record, const PntUndoStroke& stroke) {
    const auto* const combo = dynamic_cast<const PntUndoCombo*>(record);
    return combo && std::any_of(combo->children().begin(), combo->children().end(),
                                [&](const auto& child) { return child == &stroke; });
}

}  // namespace

// A combined record answers with the child that is about the layer.
void collapseChain(PntUndoDatabase& database, PntUndoStroke& archived) {
    const auto& records = database.records();
    // Behind the record itself or the combination that it is in; else behind the oldest.
    auto at = std::find_if(records.begin(), records.end(), [&](const auto& record) {
        return record == &archived || holds(record.get(), archived);
    });
    if (at == records.end()) at = records.begin();
    if (at == records.end()) return;
    for (++at; at != records.end(); ++at) {
        if (!*at) continue;
        const Ref<PntUndoOper> match = archived.matchKind(**at);
        if (!match) continue;
        auto* const next = dynamic_cast<PntUndoStroke*>(match.get());
        if (!next) continue;
        ilSmartImage* const parent = archived.newColor();
        if (hostDebugLevel() == undoLogs)
            log("Brushwork:Undo:   Archiving undoHandle[%d] nextUH[%d], child[%p] parent[%p] "
                "this[%p]\n",
                archived.undoHandle(), next->undoHandle(),
                static_cast<const void*>(next->newColor()),
                static_cast<const void*>(parent ? ilSmartImage::from(parent->source()) : nullptr),
                static_cast<const void*>(parent));
        fold(parent, next->newColor(), colorTexts);
        fold(archived.newStencil(), next->newStencil(), stencilTexts);
        return;
    }
}

}  // namespace brushwork
