// Showing another number, and putting whole lists back.
#include "animation/anim_frame_switch_undo_oper.h"
#include "animation/animation_state.h"
#include "facade/undo_filing.h"

namespace brushwork {

bool AnimationState::switchFrame(std::uint32_t number, bool undo, bool notify, bool preserveView,
                                 std::int32_t canvas, std::int32_t layerId, bool commit,
                                 bool keepLayer) {
    number = resolve(number);
    if (number > maxFrameNumber) return false;
    const AnimFrame* const target = frameShowing(number);
    if (canvas < 0) canvas = target ? target->canvasIndex() : -1;
    if (canvas < 0 && baseCanvas) canvas = baseCanvas->canvasIndex();
    if (canvas < 0 || !paint.hasCanvas(canvas)) return false;
    if (!keepLayer) layerId = -2;
    const std::uint32_t from = currentFrame;
    // What counts is the canvas in front: the host may have put another one there.
    const bool moves = !switching && canvas != paint.currentCanvas();
    if (moves && commit) commitPending();
    const CanvasLayer before = present();
    currentFrame = number;
    if (!switching && (moves || layerId != -2)) {
        switching = true;
        showCanvas(canvas, layerId, preserveView);
        switching = false;
    }
    if (records(undo) && (from != number || canvas != before.canvas)) {
        const CanvasLayer after = switching ? CanvasLayer{canvas, layerId} : present();
        const Ref<PntUndoOper> record(
            new AnimFrameSwitchUndoOper(weak_from_this(), before, after, from, number));
        fileRecord(record.get());
    }
    if (notify && from != number) {
        tellCurrent();
        tellSelected();
    }
    return true;
}

// A live edit ends first, as part of the frame on which it was made.
void AnimationState::restoreFrames(const FrameListSnapshot& snapshot, std::int32_t canvas,
                                   std::int32_t layerId, std::span<const std::uint32_t> changed,
                                   std::span<const Ref<AnimFrame>> touched) {
    const bool lengthChanges = list.last() != snapshot.lastFrame;
    const std::uint32_t target = snapshot.currentFrame;
    commitPending();
    list.restore(snapshot);
    TransformRecord view;
    if (!touched.empty() && paint.view(paint.currentCanvas(), view))
        for (const Ref<AnimFrame>& frame : touched)
            if (frame && paint.hasCanvas(frame->canvasIndex()))
                paint.setView(frame->canvasIndex(), view);
    switchFrame(target, false, currentFrame != target, true,
                canvas >= 0 && paint.hasCanvas(canvas) ? canvas : -1, layerId, true, true);
    for (const std::uint32_t number : changed) tellChanged(number);
    if (changed.empty() && lengthChanges) tellChanged(currentFrame);
}

}  // namespace brushwork
