// HostUndoStack: undo as a user sees it: levels, each of all the records that one command filed.
//
//     HostUndoStack undo;
//     setUndoDatabase(&undo);
//     undo.beginLevel("blur");
//     manager.applyConvolve({});
//     undo.endLevel();
//     if (undo.undo().redraw) manager.refreshDisplay(-2);
//
// A new level forgets those that were undone. Host's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "brushwork/pnt_undo_database.h"

namespace brushwork::tools {

class HostUndoStack final : public PntUndoDatabase {
  public:
    struct Step {
        bool done = false;    // there was a level
        bool redraw = false;  // the display is to be refreshed
    };

    ~HostUndoStack() override = default;
    bool add(PntUndoOper* record) override;
    // Forgets undone levels, then archives the others and drops them.
    bool clear() override;

    // Records filed between them are one level; pairs may nest, and the outermost counts. Outside
    // of them each record is a level of its own. A level without records doesn't come to be.
    void beginLevel(std::string title);
    void endLevel();
    [[nodiscard]] bool inLevel() const { return depth_ > 0; }

    Step undo();
    Step redo();
    [[nodiscard]] std::size_t undoLevels() const { return done_; }
    [[nodiscard]] std::size_t redoLevels() const { return levels_.size() - done_; }
    // Of the level that undo would take back; empty without one.
    [[nodiscard]] std::string title() const;
    // The most levels that are kept to be undone; the oldest are archived as the
    // next level comes to be, or at once while nothing is undone. 0: no limit.
    void setLimit(std::size_t levels);

  private:
    struct Level {
        std::string title;
        std::vector<std::int32_t> handles;  // of records, in order
    };
    void forgetUndone();
    void retire();

    std::vector<Level> levels_;  // oldest first
    std::size_t done_ = 0;       // how many of them are done; the rest are undone
    std::size_t limit_ = 0;
    std::int32_t depth_ = 0;
    bool fresh_ = false;  // the open level has no record yet
    std::string openTitle_;
};

}  // namespace brushwork::tools
