#include "foundation/host/host_canvas.h"

namespace brushwork {

HostCanvas hostCreateCanvas(std::intptr_t value1, std::intptr_t value2) {
    const auto call = hostCallTable().createCanvas;
    return call ? call(value1, value2) : nullptr;
}

void hostCanvasCreated(HostCanvas canvas) {
    const auto call = hostCallTable().canvasCreated;
    if (canvas && call) call(canvas);
}

HostSurface hostCanvasSurface(HostCanvas canvas) {
    const auto call = hostCallTable().canvasSurface;
    return canvas && call ? call(canvas) : nullptr;
}

bool hostSurfaceSize(HostSurface surface, std::int32_t& width, std::int32_t& height) {
    const auto call = hostCallTable().surfaceSize;
    if (!surface || !call) return false;
    call(surface, &width, &height);
    return true;
}

void* hostSurfacePixels(HostSurface surface) {
    const auto call = hostCallTable().surfacePixels;
    return surface && call ? call(surface) : nullptr;
}

bool hostSurfaceIsTransparent(HostSurface surface) {
    const auto call = hostCallTable().surfaceIsTransparent;
    return surface && call && call(surface);
}

void hostSetCanvasSurface(HostCanvas canvas, std::intptr_t value) {
    const auto call = hostCallTable().setCanvasSurface;
    if (canvas && call) call(canvas, value);
}

bool hostScreenSize(std::int32_t& width, std::int32_t& height) {
    const auto call = hostCallTable().screenSize;
    if (!call) return false;
    call(&width, &height);
    return true;
}

void hostRequestRepaint(HostCanvas canvas) {
    const auto call = hostCallTable().requestRepaint;
    if (canvas && call) call(canvas);
}

bool hostIsUpdating() {
    const auto call = hostCallTable().isUpdating;
    return call && call();
}

void hostFlushCanvas(HostCanvas canvas) {
    const auto call = hostCallTable().flushCanvas;
    if (canvas && call) call(canvas);
}

void hostBeginPaint(HostCanvas canvas) {
    const auto call = hostCallTable().beginPaint;
    if (canvas && call) call(canvas);
}

void hostEndPaint(HostCanvas canvas) {
    const auto call = hostCallTable().endPaint;
    if (canvas && call) call(canvas);
}

void hostSetCursor(HostCanvas canvas, std::int32_t cursor) {
    const auto call = hostCallTable().setCursor;
    if (canvas && call) call(canvas, cursor);
}

void hostDrawOutline(HostCanvas canvas, const void* pixels, std::int32_t step, const HostBox& box) {
    const auto call = hostCallTable().drawOutline;
    if (canvas && call) call(canvas, pixels, step, &box);
}

bool hostViewParameters(HostSurface surface, float* outputs8) {
    const auto call = hostCallTable().viewParameters;
    if (!surface || !call) return false;
    call(surface, outputs8);
    return true;
}

void hostPresentSurface(HostSurface surface) {
    const auto call = hostCallTable().presentSurface;
    if (surface && call) call(surface);
}

bool hostDocumentValid(std::int32_t canvasIndex) {
    const auto call = hostCallTable().documentValid;
    return !call || call(canvasIndex);
}

void hostRefreshUI(bool layers, bool canvas) {
    if (const auto call = hostCallTable().refreshUI) call(layers, canvas);
}

void hostUiRefresh() {
    if (const auto call = hostCallTable().uiRefresh) call();
}

void hostLayerListChanged(bool whole) {
    if (const auto call = hostCallTable().layerListChanged) call(whole);
}

void hostActiveLayerChanged() {
    if (const auto call = hostCallTable().activeLayerChanged) call();
}

void hostDirtyRect(std::int32_t canvas, std::int32_t layer, const HostBox& box) {
    if (const auto call = hostCallTable().dirtyRect) call(canvas, layer, &box);
}

void hostLayerDirtyRect(std::int32_t layerId, const HostBox& box) {
    if (const auto call = hostCallTable().layerDirtyRect) call(layerId, &box);
}

void hostSetBusy(bool busy) {
    if (const auto call = hostCallTable().setBusy) call(busy);
}

void hostShowMessage(const char* text) {
    if (const auto call = hostCallTable().showMessage) call(text);
}

std::int32_t hostReportError(std::int32_t style, const char* text) {
    const auto call = hostCallTable().reportError;
    char buffer[256] = {};
    return call ? call(-1, -1, style, buffer, text) : 0;
}

}  // namespace brushwork
