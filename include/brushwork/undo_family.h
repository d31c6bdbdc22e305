// UndoFamily: housekeeping of undo. Records are run by the host: pnt_undo_database.h.
//
// The environment variable SID_UNDO_DISABLE, set to "1" as the first record would be made, turns
// undo off for the process.
#pragma once

#include <cstdint>
#include "brushwork/export.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API UndoFamily {
  public:
    // Archives and drops all records, and resets the caches of strokes. Ignored within a stroke.
    void clearUndo();
    // The same behind `count` fresh records of the current canvas; 0 or less: none.
    void snapshotAndClear(std::int32_t count);
    // Files a record of the current canvas' stack having been exchanged with that of the slot.
    // False: no such canvas, no current one, or undo is off.
    bool noteStackSwitch(std::int32_t slot);
    // A lock by the host, and a switch: records are made while it is unlocked and on.
    void lockUndo(bool locked);
    [[nodiscard]] bool undoLocked() const;
    void setUndoEnabled(bool enabled);
    [[nodiscard]] bool undoEnabled() const;
    // Whether an edit would make a record now.
    [[nodiscard]] bool undoActive() const;
    // Files a record of a whole canvas, for a host's own grouping. False as above, and within a
    // stroke.
    bool recordCanvas(std::int32_t canvas = -2);
    // All canvases and layers to the log, while the host's debug level is 0x2016.
    void dump() const;
    // All records to the log, whatever the level.
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
