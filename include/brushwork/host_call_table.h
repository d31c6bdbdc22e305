// HostCallTable: the 68 function pointers through which the engine reaches its host.
//
// A host fills the slots it serves before it uses the engine, by `hostCallTable().startTimer =
// ...`. An empty slot is allowed everywhere: the engine then goes on as if the call had done
// nothing and answered zero. Unless a role says otherwise it is called on the host's own thread,
// the one that calls the engine, and must not call back into the engine. Only plain C types cross.
#pragma once

#include <cstdint>

#include "brushwork/export.h"

namespace brushwork {

// A box of pixels: the corner with the smallest coordinates, then the extent. Same layout as
// ilTile.
struct HostBox {
    std::int32_t x = 0, y = 0, z = 0;
    std::int32_t nx = 0, ny = 0, nz = 0;
};

using HostCanvas = void*;   // a window or view of the host; null is none
using HostSurface = void*;  // the pixels that such a canvas shows; null is none
using HostTimerId = std::int32_t;
using HostTimerCallback = void (*)(void* argument);
using HostCurve = void*;  // a plane curve of the host's; null is none
using HostShape = void*;  // a vector shape of the host's; null is none
using HostReservedCall = void (*)();

// A piece of a tessellated curve: where it begins and how far it goes.
struct HostSegment {
    float x = 0.0f;
    float y = 0.0f;
    float dx = 0.0f;
    float dy = 0.0f;
};

struct HostCallTable {
    // Canvases and the surfaces behind them. Null from createCanvas is allowed: that document is
    // shown nowhere. The two values are those that the host gave when it asked for the document.
    HostCanvas (*createCanvas)(std::intptr_t value1, std::intptr_t value2) = nullptr;
    void (*canvasCreated)(HostCanvas canvas) = nullptr;
    // Asked whenever it is needed: a host may change it at any time.
    HostSurface (*canvasSurface)(HostCanvas canvas) = nullptr;
    void (*surfaceSize)(HostSurface surface, std::int32_t* width, std::int32_t* height) = nullptr;
    // Four bytes a pixel (red, green, blue, alpha, premultiplied), rows from below without padding.
    // The engine draws there; the memory is the host's and lasts as long as the surface.
    void* (*surfacePixels)(HostSurface surface) = nullptr;
    bool (*surfaceIsTransparent)(HostSurface surface) = nullptr;
    void (*setCanvasSurface)(HostCanvas canvas, std::intptr_t value) = nullptr;
    // In pixels; sizes that no screen has count as not told.
    void (*screenSize)(std::int32_t* width, std::int32_t* height) = nullptr;

    // Timers: one-shot, delivered on the host's thread while it is outside the engine.
    HostTimerId (*startTimer)(std::int32_t milliseconds, HostTimerCallback callback,
                              void* argument) = nullptr;
    void (*stopTimer)(HostTimerId timer) = nullptr;

    // Display.
    // The surface holds something new that is to be on the screen soon.
    void (*requestRepaint)(HostCanvas canvas) = nullptr;
    // Whether the host is in the middle of drawing: then no repaint is asked for.
    bool (*isUpdating)() = nullptr;
    // What was asked for is to be on the screen now, while a stroke goes on.
    void (*flushCanvas)(HostCanvas canvas) = nullptr;
    void (*beginPaint)(HostCanvas canvas) = nullptr;
    void (*endPaint)(HostCanvas canvas) = nullptr;
    void (*setCursor)(HostCanvas canvas, std::int32_t cursor) = nullptr;
    // The marching outline of the selection: a byte a pixel of the box, 0 for none, rows from below
    // without padding, until the call ends. The box is in document pixels; `step` falls by 1 each
    // time.
    void (*drawOutline)(HostCanvas canvas, const void* pixels, std::int32_t step,
                        const HostBox* box) = nullptr;
    // How the surface shows the document: outputs x, y, scale, and the filters across and up; three
    // are kept for later. Pixel p is seen at p * scale - (x, y); a scale not above 0 counts as not
    // answered.
    void (*viewParameters)(HostSurface surface, float* outputs8) = nullptr;
    // The surface's pixels are whole: the host shows them.
    void (*presentSurface)(HostSurface surface) = nullptr;

    // Document state and what the host's own windows show of it. Boxes last until the call ends.
    // Whether that canvas is still there for the host; undo leaves others alone. True without it.
    bool (*documentValid)(std::int32_t canvasIndex) = nullptr;
    void (*refreshUI)(bool layers, bool canvas) = nullptr;
    void (*uiRefresh)() = nullptr;
    // Layers came, went or moved; `whole`: the list is another one.
    void (*layerListChanged)(bool whole) = nullptr;
    void (*activeLayerChanged)() = nullptr;
    // The box, in document pixels, shows something new; canvas and layer as operations name them.
    void (*dirtyRect)(std::int32_t canvas, std::int32_t layer, const HostBox* box) = nullptr;
    void (*layerDirtyRect)(std::int32_t layerId, const HostBox* box) = nullptr;
    // Something begins, or has ended, that takes longer than a person waits without a sign.
    void (*setBusy)(bool busy) = nullptr;

    // Words to a person and to a developer. Texts are UTF-8 and end with the call.
    void (*showMessage)(const char* text) = nullptr;
    std::int32_t (*reportError)(std::int32_t a, std::int32_t b, std::int32_t style, char* buffer,
                                const char* text) = nullptr;
    // 0x2016 asks for layer and undo logs, 0x1f41 for paint marks, 8111 for image construction.
    // May be called from any thread.
    std::int32_t (*debugLevel)() = nullptr;

    // Curves. Places on a curve are told by arc parameters: the way along it in its own unit, 0 at
    // its start, curveLength at its end. Parameters outside that range stand for its ends.
    bool (*curveIsClosed)(HostCurve curve) = nullptr;
    double (*curveLength)(HostCurve curve) = nullptr;
    // The arc parameter of the place on the curve that is nearest to (x, y).
    double (*curveNearest)(HostCurve curve, double x, double y) = nullptr;
    // The place at an arc parameter; false, and nothing written, if the curve has none.
    bool (*curvePoint)(HostCurve curve, double arc, double* x, double* y) = nullptr;
    // The way the curve goes on there, of any length; false, and nothing written, if it has none.
    bool (*curveDirection)(HostCurve curve, double arc, double* x, double* y) = nullptr;
    // Moves each control point in place, to (m[0] x + m[1] y + m[2], m[3] x + m[4] y + m[5]).
    void (*mapCurve)(HostCurve curve, const double* m) = nullptr;
    // The engine is through with a curve that was given to it.
    void (*releaseCurve)(HostCurve curve) = nullptr;
    // The corners of a box around the curve, x then y; false, and nothing written, for an empty
    // curve.
    bool (*curveBounds)(HostCurve curve, double* low, double* high) = nullptr;
    // The curve as straight pieces in order, nowhere further from it than the tolerance. The
    // answer is the host's memory; the engine gives it back by freeSegments. Null for an empty
    // curve, with a count of 0.
    HostSegment* (*tessellateCurve)(HostCurve curve, double tolerance,
                                    std::int32_t* count) = nullptr;
    void (*freeSegments)(HostSegment* segments) = nullptr;

    // Shapes.
    // A shape was made that carries this value of the host's, with 0 beside it. The engine keeps
    // the answer for the host to ask for.
    void* (*shapeDataCreated)(void* hostData, std::int32_t value) = nullptr;
    // A curve of the shape, counted from 0; null behind the last. Together they are its outline, in
    // layer pixels. It stays the host's and must last until the next call about this shape. Of a
    // shape that warps, curves come in pairs: where a line of the picture lies, and where it goes.
    HostCurve (*shapeCurve)(HostShape shape, std::int32_t index) = nullptr;
    // The tip that strokes the outline: a byte of coverage a pixel, rows from below without
    // padding. The memory is the host's and must last until the next call. Null: a round tip.
    const std::uint8_t* (*shapeStamp)(HostShape shape, std::int32_t* width,
                                      std::int32_t* height) = nullptr;

    // Slots that no role uses yet. They are cleared like the others.
    HostReservedCall reserved[25] = {};
};

inline constexpr int hostCallSlots = 68;
static_assert(sizeof(HostCallTable) == hostCallSlots * sizeof(HostReservedCall));

// The process's one table. Fill or change it only while no engine call runs.
[[nodiscard]] BRUSHWORK_API HostCallTable& hostCallTable() noexcept;
// Empties all 68 slots.
BRUSHWORK_API void clearHostCallTable() noexcept;

}  // namespace brushwork
