// UndoFamily: housekeeping of undo. Records are run by the host: pnt_undo_database.h.
#pragma once

#include <cstdint>
#include "brushwork/export.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API UndoFamily {
  public:
    // Archives and drops all records, and resets the caches of strokes.
    void clearUndo();
    // The same behind `count` fresh records of the current canvas.
    void snapshotAndClear(std::int32_t count);
    // Files a record of the current canvas' stack having been exchanged with that of the slot.
    bool noteStackSwitch(std::int32_t slot);
    // A lock by the host, and a switch: records are made while it is unlocked and on.
    void lockUndo(bool locked);
    [[nodiscard]] bool undoLocked() const;
    void setUndoEnabled(bool enabled);
    [[nodiscard]] bool undoEnabled() const;
    // Whether an edit would make a record now.
    [[nodiscard]] bool undoActive() const;
    // Files a record of the whole current canvas, for a host's own grouping.
    bool recordCanvas(std::int32_t canvas = -2);
    // To the log, where the host's debug level asks for it.
    void dump() const;
    void dumpHistory() const;

  protected:
    explicit UndoFamily(FacadeState& state) : state_(state) {}
    UndoFamily(const UndoFamily&) = delete;
    UndoFamily& operator=(const UndoFamily&) = delete;
    ~UndoFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
