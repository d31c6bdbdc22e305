#include "undo/pnt_undo_stroke.h"

#include <optional>

#include "document/layer/document_switches.h"
#include "document/stack/stack_invalidate.h"
#include "document/stack/stack_paint_mask.h"
#include "document/stack/stack_selection.h"
#include "foundation/host/host_calls.h"
#include "foundation/services/log.h"
#include "undo/canvas_redraw.h"
#include "undo/chain_collapse.h"
#include "undo/changed_pages.h"

namespace brushwork {
namespace {

bool logsUndo() {
    constexpr std::int32_t undoLogs = 0x2016;
    return hostDebugLevel() == undoLogs;
}

// The image, or one that it was painted over.
bool restsOn(ilSmartImage* image, const ilSmartImage* ground) {
    for (; image; image = ilSmartImage::from(image->source()))
        if (image == ground) return true;
    return false;
}

// What the layer shows otherwise with those images, in its pixels. Nothing: all of it may.
std::optional<ilTile> changeOf(Layer& shown, ilImage* color, ilImage* stencil, std::int32_t x,
                               std::int32_t y) {
    float atX = 0.0f;
    float atY = 0.0f;
    shown.offset(&atX, &atY);
    // Masks and the selection tell on other layers.
    if (shown.role() != LayerRole::Paint || shown.inTransform() || atX != static_cast<float>(x) ||
        atY != static_cast<float>(y))
        return std::nullopt;
    const std::optional<ilTile> inColor = changedBox(shown.smartColor(), ilSmartImage::from(color));
    if (!inColor) return std::nullopt;
    const std::optional<ilTile> inStencil =
        changedBox(shown.smartStencil(), ilSmartImage::from(stencil));
    if (!inStencil) return std::nullopt;
    return unionOf(*inColor, *inStencil);
}

const void* place(const ilSmartImage* image) {
    return image;
}

}  // namespace

PntUndoStroke::PntUndoStroke(UndoCanvases& canvases, std::int32_t canvas, std::int32_t layerId,
                             LayerStack* stack, Layer* layer, ilImage* color, ilImage* stencil,
                             const char* primaryName)
    : PntUndoLayer(canvases, canvas, layerId, stack, layer, primaryName),
      refColor_(ilSmartImage::from(color)),
      refStencil_(ilSmartImage::from(stencil)),
      newColor_(new ilSmartImage(refColor_.get())),
      newStencil_(new ilSmartImage(refStencil_.get())) {
    addKind("SidStroke");
    if (layer) layer->offset(&undoX_, &undoY_);
    redoX_ = undoX_;
    redoY_ = undoY_;
    swapIn(newColor_.get(), newStencil_.get(), static_cast<std::int32_t>(undoX_),
           static_cast<std::int32_t>(undoY_), Swap::Fresh);
    if (logsUndo())
        log("\n ================================== \nnew PntUndoStroke[%d] refImage[%p] "
            "newImage[%p]\n",
            undoHandle(), place(refColor_.get()), place(newColor_.get()));
}

PntUndoStroke::PntUndoStroke(UndoCanvases& canvases, std::int32_t canvas, ByIndex at,
                             LayerStack* stack, Layer* layer, ilImage* color, ilImage* stencil,
                             const char* primaryName)
    : PntUndoStroke(canvases, canvas, idOf(stack, at), stack, layer, color, stencil, primaryName) {}

PntUndoStroke::~PntUndoStroke() {
    if (logsUndo()) log("~PntUndoStroke[%d] newImage[%p]\n", undoHandle(), place(newColor_.get()));
}

std::size_t PntUndoStroke::objectSize() const {
    return sizeof(PntUndoStroke) + extraSize();
}

// A fresh record leaves the layer where it is; undo and redo set whole numbers.
bool PntUndoStroke::swapIn(ilImage* color, ilImage* stencil, std::int32_t x, std::int32_t y,
                           Swap swap) {
    LayerStack* const live = canvases().stackAt(canvasIndex());
    Layer* const shown = layer();
    if (!live || live != stack() || !shown) return false;
    const std::optional<ilTile> changed =
        swap == Swap::Back ? changeOf(*shown, color, stencil, x, y) : std::nullopt;
    shown->setColorImage(color);
    shown->setStencilImage(stencil);
    if (shown == live->activeLayer()) live->paintOps();
    if (swap == Swap::Back) shown->setOffset(static_cast<float>(x), static_cast<float>(y));
    canvases().scheduleIdle();
    if (swap == Swap::Back) {
        shown->propagateChange(true);
        if (!changed) stack::staleSide(live->parts(), *shown);
        if (shown == live->selectionLayer()) {
            stack::selectionChanged(live->parts());
        } else if (shown->role() != LayerRole::Paint) {
            shown->markClipDirty(true);
            live->rebuildPaintMask();
        }
        if (!changed)
            live->invalidateRect(live->canvasBounds());
        else if (!changed->isEmpty())
            live->accumulateDirty(*changed, *shown);
    }
    live->noteChange(shown);
    return true;
}

// Resampling and turning make a layer's images anew instead of painting into the children.
void PntUndoStroke::keepForRedo() {
    Layer* const shown = layer();
    if (undone_ || !shown || shown->inTransform() || canvases().stackAt(canvasIndex()) != stack())
        return;
    ilSmartImage* const color = shown->smartColor();
    ilSmartImage* const stencil = shown->smartStencil();
    redoColor_ = Ref<ilSmartImage>(restsOn(color, newColor_.get()) ? newColor_.get() : color);
    redoStencil_ =
        Ref<ilSmartImage>(restsOn(stencil, newStencil_.get()) ? newStencil_.get() : stencil);
}

// The children's sources are asked for each time: archiving of an earlier record may have changed
// what a child rests on.
void PntUndoStroke::undo(bool* deferRedraw) {
    if (layer()) layer()->offset(&redoX_, &redoY_);
    keepForRedo();
    const Ref<ilSIDImage> stencil(newStencil_->source());
    const Ref<ilSIDImage> color(newColor_->source());
    if (swapIn(color.get(), stencil.get(), static_cast<std::int32_t>(undoX_),
               static_cast<std::int32_t>(undoY_), Swap::Back)) {
        documentSwitches().undoRan = true;
        redrawOrDefer(canvases(), canvasIndex(), deferRedraw);
    }
    undone_ = true;
}

void PntUndoStroke::redo(bool* deferRedraw) {
    ilSmartImage* const color = redoColor_ ? redoColor_.get() : newColor_.get();
    ilSmartImage* const stencil = redoStencil_ ? redoStencil_.get() : newStencil_.get();
    if (swapIn(color, stencil, static_cast<std::int32_t>(redoX_), static_cast<std::int32_t>(redoY_),
               Swap::Back)) {
        documentSwitches().undoRan = true;
        redrawOrDefer(canvases(), canvasIndex(), deferRedraw);
    }
    undone_ = false;
}

void PntUndoStroke::archive(PntUndoDatabase& database) {
    if (undone_) return;
    collapseChain(database, *this);
    if (logsUndo()) log("Archive[%d] newImage[%p]\n", undoHandle(), place(newColor_.get()));
}

}  // namespace brushwork
