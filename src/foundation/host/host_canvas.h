// The host's canvases, surfaces, windows and words: one function for each role, which bears the
// empty slot and the null handle. What a role means: host_call_table.h.
#pragma once

#include <cstdint>

#include "brushwork/host_call_table.h"

namespace brushwork {

// Null without a host.
[[nodiscard]] HostCanvas hostCreateCanvas(std::intptr_t value1, std::intptr_t value2);
void hostCanvasCreated(HostCanvas canvas);
[[nodiscard]] HostSurface hostCanvasSurface(HostCanvas canvas);
// False, and nothing written, without one.
[[nodiscard]] bool hostSurfaceSize(HostSurface surface, std::int32_t& width, std::int32_t& height);
[[nodiscard]] void* hostSurfacePixels(HostSurface surface);
[[nodiscard]] bool hostSurfaceIsTransparent(HostSurface surface);
void hostSetCanvasSurface(HostCanvas canvas, std::intptr_t value);
[[nodiscard]] bool hostScreenSize(std::int32_t& width, std::int32_t& height);

void hostRequestRepaint(HostCanvas canvas);
[[nodiscard]] bool hostIsUpdating();
void hostFlushCanvas(HostCanvas canvas);
void hostBeginPaint(HostCanvas canvas);
void hostEndPaint(HostCanvas canvas);
void hostSetCursor(HostCanvas canvas, std::int32_t cursor);
void hostDrawOutline(HostCanvas canvas, const void* pixels, std::int32_t step, const HostBox& box);
// False, and nothing written, without the role.
[[nodiscard]] bool hostViewParameters(HostSurface surface, float* outputs8);
void hostPresentSurface(HostSurface surface);

// True without the role.
[[nodiscard]] bool hostDocumentValid(std::int32_t canvasIndex);
void hostRefreshUI(bool layers, bool canvas);
void hostUiRefresh();
void hostLayerListChanged(bool whole);
void hostActiveLayerChanged();
void hostDirtyRect(std::int32_t canvas, std::int32_t layer, const HostBox& box);
void hostLayerDirtyRect(std::int32_t layerId, const HostBox& box);
void hostSetBusy(bool busy);
void hostShowMessage(const char* text);
// Style 0x10 is an error. The host's answer, 0 without the role.
std::int32_t hostReportError(std::int32_t style, const char* text);

}  // namespace brushwork
