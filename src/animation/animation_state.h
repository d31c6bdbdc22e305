// AnimationState: the frames of an animation, the number being shown, and who hears of changes.
// Its work stands in frame_canvases (new canvases), frame_switch (showing), frame_edits (the list).
#pragma once

#include <memory>
#include <vector>

#include "animation/anim_list_undo_oper.h"
#include "animation/frame_canvas.h"
#include "animation/frame_list.h"
#include "animation/frame_timeline.h"
#include "brushwork/frame_listeners.h"
#include "brushwork/paint_manager.h"

namespace brushwork {

struct AnimationState final : FrameTimeline, std::enable_shared_from_this<AnimationState> {
    explicit AnimationState(PaintManager& manager);
    AnimationState(const AnimationState&) = delete;
    AnimationState& operator=(const AnimationState&) = delete;
    ~AnimationState() override;

    PaintManager& paint;
    std::shared_ptr<PaintDoor> door;
    std::vector<FrameListener*> listeners;
    FrameList list;
    std::uint32_t currentFrame = 1;
    Ref<AnimFrame> baseCanvas;  // whose canvas serves when no frame was given
    bool switching = false;     // a canvas is being put in front: no other may be

    // FrameTimeline
    bool switchFrame(std::uint32_t number, bool undo, bool notify, bool preserveView,
                     std::int32_t canvas, std::int32_t layerId, bool commit,
                     bool keepLayer) override;
    void restoreFrames(const FrameListSnapshot& snapshot, std::int32_t canvas, std::int32_t layerId,
                       std::span<const std::uint32_t> changed,
                       std::span<const Ref<AnimFrame>> touched) override;
    [[nodiscard]] AnimFrame* frameShowing(std::uint32_t number) const override;
    void tellChanged(std::uint32_t number) override;

    void tellCurrent();
    void tellSelected();

    // Edits, as AnimationManager tells.
    bool addFrame(std::uint32_t number, std::int32_t canvas, const ImageRef& image, bool undo,
                  bool notify, std::int32_t layerId);
    bool deleteFrame(std::uint32_t number, bool undo);
    bool duplicateFrame(std::uint32_t number, bool undo);
    bool reorderFrames(std::uint32_t from, std::uint32_t to, bool undo);
    bool setLastFrame(std::uint32_t number, bool undo);
    bool modifyFrame(std::uint32_t number, const AnimFrame& fields, bool undo);
    [[nodiscard]] bool canInsertAt(std::uint32_t number) const;
    [[nodiscard]] bool canDuplicate(std::uint32_t number) const;
    [[nodiscard]] std::uint32_t resolve(std::uint32_t number) const {
        return number == 0 ? currentFrame : number;
    }

    // Ends a live edit: stroke, transform, fill.
    void commitPending();
    // Without undo; in front, and nobody is told. -1: none.
    [[nodiscard]] std::int32_t newFrameCanvas(std::int32_t model);
    // Without undo; shares all pixels, and has the selection too. -1: none.
    [[nodiscard]] std::int32_t copyOfCanvas(std::int32_t canvas);
    void showCanvas(std::int32_t canvas, std::int32_t layerId, bool preserveView);
    // The canvas in front and its active layer.
    [[nodiscard]] CanvasLayer present() const;
    // From what was to what is now.
    [[nodiscard]] FrameListChange change(CanvasLayer before, FrameListSnapshot old) const;
    [[nodiscard]] bool records(bool undo) const;

  private:
    template <class Call>
    void tell(const Call& call);
};

}  // namespace brushwork
