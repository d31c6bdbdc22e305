// FrameCanvas: keeps a canvas of the PaintManager open while a frame lives, in the list or in a
// record.
//
//     frame.setCanvas(keepCanvas(door, index, CanvasOrigin::Made));
//
// All frames of a canvas share one. A canvas that was made for a frame is closed with its last
// frame; one that the host gave stays the host's, unless its frame was deleted.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "brushwork/paint_manager.h"

namespace brushwork {

class FrameCanvas;

// The manager as long as it can be reached, and its canvases that frames hold.
struct PaintDoor {
    PaintManager* paint = nullptr;
    std::map<std::int32_t, std::weak_ptr<FrameCanvas>> kept;
};

enum class CanvasOrigin { Made, Given };

class FrameCanvas {
  public:
    FrameCanvas(std::shared_ptr<PaintDoor> door, std::int32_t index, CanvasOrigin origin)
        : door_(std::move(door)), index_(index), origin_(origin) {}
    FrameCanvas(const FrameCanvas&) = delete;
    FrameCanvas& operator=(const FrameCanvas&) = delete;
    // Closes the canvas, without a record.
    ~FrameCanvas();

    [[nodiscard]] std::int32_t index() const { return index_; }
    // A frame of it was deleted, or that was taken back.
    void setDeleted(bool deleted) { deleted_ = deleted; }

  private:
    std::shared_ptr<PaintDoor> door_;
    std::int32_t index_;
    CanvasOrigin origin_;
    bool deleted_ = false;
};

// The one that frames hold already, or a new one.
[[nodiscard]] std::shared_ptr<FrameCanvas> keepCanvas(const std::shared_ptr<PaintDoor>& door,
                                                      std::int32_t index, CanvasOrigin origin);

// Edits make no undo records in the scope.
class UndoPause {
  public:
    explicit UndoPause(PaintManager& paint) : paint_(paint), enabled_(paint.undoEnabled()) {
        paint_.setUndoEnabled(false);
    }
    UndoPause(const UndoPause&) = delete;
    UndoPause& operator=(const UndoPause&) = delete;
    ~UndoPause() { paint_.setUndoEnabled(enabled_); }

  private:
    PaintManager& paint_;
    bool enabled_;
};

}  // namespace brushwork
