// Edits of the frame list, and their records.
#include <algorithm>

#include "animation/anim_frame_add_undo_oper.h"
#include "animation/anim_frame_delete_undo_oper.h"
#include "animation/anim_frame_duplicate_undo_oper.h"
#include "animation/anim_frame_modify_undo_oper.h"
#include "animation/anim_frame_reorder_undo_oper.h"
#include "animation/animation_state.h"
#include "facade/undo_filing.h"

namespace brushwork {
namespace {

constexpr std::int32_t noCanvas = -1, canvasInFront = -2;

template <class Record, class... Arguments>
void fileNew(Arguments&&... arguments) {
    const Ref<PntUndoOper> record(new Record(std::forward<Arguments>(arguments)...));
    fileRecord(record.get());
}

}  // namespace

bool AnimationState::canInsertAt(std::uint32_t number) const {
    return number >= 1 && number <= maxFrameNumber && !list.starting(number);
}

// A copy that comes behind a frame pushes others on as far as the first gap.
bool AnimationState::canDuplicate(std::uint32_t number) const {
    number = resolve(number);
    if (number > maxFrameNumber) return false;
    const AnimFrame* const source = frameShowing(number);
    if (!source) return false;
    return list.hasRoom(source->frameNumber == number ? number + 1 : number);
}

bool AnimationState::addFrame(std::uint32_t number, std::int32_t canvas, const ImageRef& image,
                              bool undo, bool notify, std::int32_t layerId) {
    if (number == 0) number = list.isEmpty() ? 1 : currentFrame + 1;
    Ref<AnimFrame> frame(list.starting(number));
    const bool isNew = !frame;
    if (isNew && !canInsertAt(number)) return false;
    if (canvas == canvasInFront) canvas = paint.currentCanvas();
    const std::int32_t model = baseCanvas ? baseCanvas->canvasIndex() : noCanvas;
    const bool isMade = isNew && canvas == noCanvas;
    const std::int32_t needed = !isNew ? frame->canvasIndex() : isMade ? model : canvas;
    if (needed < 0 || !paint.hasCanvas(needed)) return false;

    commitPending();
    const CanvasLayer before = present();
    FrameListSnapshot old = list.snapshot(currentFrame);
    if (isMade) {
        TransformRecord view;
        const bool seen = paint.view(before.canvas, view);
        canvas = newFrameCanvas(model);
        if (canvas < 0) return false;
        if (seen) paint.setView(canvas, view);
    }
    if (isNew) {
        frame = Ref<AnimFrame>(new AnimFrame(
            keepCanvas(door, canvas, isMade ? CanvasOrigin::Made : CanvasOrigin::Given)));
        frame->frameNumber = number;
        list.insert(frame);
        if (!baseCanvas) baseCanvas = frame;
    }
    if (image) {
        frame->thumbnail = image.copy();
        frame->thumbnailValid = true;
    }
    currentFrame = number;
    showCanvas(frame->canvasIndex(), layerId, true);
    const std::uint32_t shownBefore = old.currentFrame;
    if (isNew && records(undo))
        fileNew<AnimFrameAddUndoOper>(weak_from_this(), change(before, std::move(old)), frame,
                                      std::vector<Ref<AnimFrame>>());
    if (!notify) return true;
    if (shownBefore != currentFrame) tellCurrent();
    tellChanged(number);
    tellSelected();
    return true;
}

bool AnimationState::deleteFrame(std::uint32_t number, bool undo) {
    number = resolve(number);
    std::size_t place = 0;
    if (number > list.last() || !list.find(number, place)) return false;
    // Held until the record has it: its canvas stays with it.
    const Ref<AnimFrame> found = list.frames()[place];
    const bool leaves = found->frameNumber == number;
    if (leaves) commitPending();
    const CanvasLayer before = present();
    FrameListSnapshot old = list.snapshot(currentFrame);
    std::vector<std::uint32_t> touched{number};
    if (leaves) {
        list.remove(place);
        found->canvas()->setDeleted(true);
    } else {
        while (touched.back() < list.last()) touched.push_back(touched.back() + 1);
        list.pullBack(place + 1);
    }
    currentFrame = std::clamp<std::uint32_t>(currentFrame, 1, std::max(1U, list.last()));
    const std::uint32_t shownBefore = old.currentFrame;
    switchFrame(currentFrame, false, false, true, noCanvas, -2, true, true);
    if (records(undo))
        fileNew<AnimFrameDeleteUndoOper>(weak_from_this(), change(before, std::move(old)), touched,
                                         touched, leaves ? found : Ref<AnimFrame>());
    for (const std::uint32_t told : touched) tellChanged(told);
    if (shownBefore != currentFrame) tellCurrent();
    return true;
}

bool AnimationState::duplicateFrame(std::uint32_t number, bool undo) {
    number = resolve(number);
    if (!canDuplicate(number)) return false;
    const Ref<AnimFrame> source(frameShowing(number));
    commitPending();
    const CanvasLayer before = present();
    const std::int32_t canvas = copyOfCanvas(source->canvasIndex());
    if (canvas < 0) return false;
    FrameListSnapshot old = list.snapshot(currentFrame);
    const std::uint32_t start = source->frameNumber == number ? number + 1 : number;
    std::vector<std::uint32_t> touched = list.makeRoom(start);
    const Ref<AnimFrame> copy(new AnimFrame(nullptr));
    copy->takeFields(*source);
    copy->setCanvas(keepCanvas(door, canvas, CanvasOrigin::Made));
    copy->frameNumber = start;
    list.insert(copy);
    touched.push_back(start);
    switchFrame(start, false, true, true, canvas, -2, true, true);
    if (records(undo))
        fileNew<AnimFrameDuplicateUndoOper>(weak_from_this(), change(before, std::move(old)),
                                            touched, copy);
    for (const std::uint32_t told : touched) tellChanged(told);
    return true;
}

bool AnimationState::reorderFrames(std::uint32_t from, std::uint32_t to, bool undo) {
    from = resolve(from);
    to = resolve(to);
    std::size_t place = 0;
    if (!list.find(from, place)) return false;
    const Ref<AnimFrame> frame = list.frames()[place];
    if (frame->frameNumber == to) return true;
    FrameList moved = list;
    moved.remove(place);
    if (!moved.hasRoom(to)) return false;

    commitPending();
    const CanvasLayer before = present();
    FrameListSnapshot old = list.snapshot(currentFrame);
    std::vector<std::uint32_t> touched{frame->frameNumber};
    std::swap(list, moved);
    const std::vector<std::uint32_t> pushed = list.makeRoom(to);
    touched.insert(touched.end(), pushed.begin(), pushed.end());
    frame->frameNumber = to;
    list.insert(frame);
    // The timeline gets no shorter: who stands last now holds to its end.
    list.setLast(std::max(list.last(), old.lastFrame));
    touched.push_back(to);
    switchFrame(to, false, true, true, noCanvas, -2, true, true);
    if (records(undo))
        fileNew<AnimFrameReorderUndoOper>(weak_from_this(), change(before, std::move(old)), touched,
                                          frame);
    for (const std::uint32_t told : touched) tellChanged(told);
    return true;
}

// The last frame shows for longer, or for fewer numbers.
bool AnimationState::setLastFrame(std::uint32_t number, bool undo) {
    if (number > maxFrameNumber || list.isEmpty()) return false;
    FrameListSnapshot old = list.snapshot(currentFrame);
    const Ref<AnimFrame> frame = list.frames().back();
    list.setLast(number);
    const std::uint32_t last = list.last();
    if (records(undo) && last != old.lastFrame)
        fileNew<AnimFrameReorderUndoOper>(weak_from_this(), change(present(), std::move(old)),
                                          std::vector<std::uint32_t>{last}, frame);
    tellChanged(last);
    return true;
}

bool AnimationState::modifyFrame(std::uint32_t number, const AnimFrame& fields, bool undo) {
    number = resolve(number);
    const Ref<AnimFrame> frame(frameShowing(number));
    if (!frame || number > maxFrameNumber) return false;
    const Ref<AnimFrame> old = frame->copy();
    const Ref<AnimFrame> next = frame->copy();
    next->takeFields(fields);
    // A frame keeps its own picture, whichever frame the fields come from.
    next->setCanvas(old->canvas());
    frame->takeFields(*next);
    if (records(undo))
        fileNew<AnimFrameModifyUndoOper>(weak_from_this(), present(), present(), number, old, next);
    tellChanged(number);
    return true;
}

}  // namespace brushwork
