// AnimationManager: frames over the canvases of a PaintManager.
//
//     AnimationManager animation(manager);
//     animation.addFrame(0, manager.currentCanvas());  // the present canvas is frame 1
//     animation.addFrame(5);                           // a new canvas; 1 to 4 show the first
//     animation.switchFrame(2);
//
// A frame holds until the next one starts, the last one up to lastFrame. Numbers are 1 to 1000, and
// 0 means the current one. The first frame that was added is the base: the model of new canvases,
// and shown where no frame is.
//
// Edits are undo records of the one database. A canvas stays open as long as a frame in the list or
// in a record has it; one that the host gave stays the host's until its frame is deleted. Hosts
// don't close canvases of frames themselves.
//
// What can't be done changes nothing and answers false. Host's thread; the PaintManager outlives
// it.
#pragma once

#include <cstdint>
#include <memory>

#include "brushwork/anim_frame.h"
#include "brushwork/export.h"
#include "brushwork/frame_listeners.h"
#include "brushwork/image_ref.h"
#include "brushwork/paint_manager.h"
#include "brushwork/ref.h"

namespace brushwork {

struct AnimationState;

class BRUSHWORK_API AnimationManager {
  public:
    explicit AnimationManager(PaintManager& paint);
    AnimationManager(const AnimationManager&) = delete;
    AnimationManager& operator=(const AnimationManager&) = delete;
    ~AnimationManager();

    // 0 is 1 for the first frame, else the number behind the current one. A frame that starts there
    // is used again. A canvas of -1: a new one of the base frame's size, view and selection, with
    // the layers "Layer 1" and "Foreground". A layer other than -2 becomes active. The image's copy
    // becomes the thumbnail.
    bool addFrame(std::uint32_t number = 0, std::int32_t canvas = -1,
                  const ImageRef& thumbnail = ImageRef(), bool undo = true, bool notify = true,
                  std::int32_t layerId = -2);
    // Within a hold the hold becomes one shorter. What stands before keeps its timing.
    bool deleteFrame(std::uint32_t number = 0, bool undo = true);
    // The copy comes behind the number; frames that stand in its way move on, up to the first gap.
    bool duplicateFrame(std::uint32_t number = 0, bool undo = true);
    // The frame that shows at `from` starts at `to`; frames that stand there move on, up to the
    // first gap. The timeline gets no shorter.
    bool reorderFrames(std::uint32_t from, std::uint32_t to, bool undo = true);
    // Other fields for the frame at the number: all but its id, number and canvas.
    bool modifyFrame(std::uint32_t number, const AnimFrame& fields, bool undo = true);
    // Shows a number: its frame's canvas becomes current, or the one given instead of -1. With
    // `preserveView` the view goes along, with `keepLayer` the layer becomes active there (-2: the
    // one that was); `commit` ends a live edit, without which a stroke holds its canvas in front.
    bool switchFrame(std::uint32_t number, bool undo = true, bool notify = true,
                     bool preserveView = true, std::int32_t canvas = -1, std::int32_t layerId = -2,
                     bool commit = true, bool keepLayer = true);

    // The last frame at or below the number; its place in the list.
    [[nodiscard]] bool findFrame(std::uint32_t number, std::size_t& place) const;
    [[nodiscard]] bool numberOccupied(std::uint32_t number) const;
    [[nodiscard]] bool canInsertAt(std::uint32_t number) const;
    [[nodiscard]] bool canDuplicate(std::uint32_t number) const;
    void dumpFrames() const;
    // Of the base frame; -1: none.
    [[nodiscard]] std::int32_t currentCanvas() const;

    [[nodiscard]] std::size_t frameCount() const;
    [[nodiscard]] Ref<AnimFrame> frameAt(std::size_t place) const;
    [[nodiscard]] std::uint32_t currentFrame() const;
    // The highest number in use, holds included.
    [[nodiscard]] std::uint32_t lastFrame() const;
    // How long the last frame holds: never below where it starts.
    bool setLastFrame(std::uint32_t number, bool undo = true);
    // A frame in the list or in a record has the canvas: a host leaves it open.
    [[nodiscard]] bool holdsCanvas(std::int32_t canvas) const;

    // Borrowed until removed.
    void addListener(FrameListener& listener);
    void removeListener(FrameListener& listener);

  private:
    std::shared_ptr<AnimationState> state_;
};

}  // namespace brushwork
