#include "facade/undo_filing.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "brushwork/pnt_undo_database.h"

namespace brushwork {
namespace {

// Without memory for a record the edit goes on without it.
template <class Record, class Make>
Ref<Record> orNone(const Make& make) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

}  // namespace

void fileRecord(PntUndoOper* record) {
    if (!record || !undoDatabase()) return;
    const Ref<PntUndoOper> held(record);
    try {
        undoDatabase()->add(record);
    } catch (const std::length_error&) {
        // A list of hundreds of millions is full: the edit goes on without a record.
    }
}

Ref<PntUndoLayerStack> recordStack(FacadeState& state, std::int32_t canvas, bool file) {
    canvas = state.canvases.resolve(canvas);
    LayerStack* const stack = state.stackAt(canvas);
    if (!stack || !state.undo.isActive() || !undoDatabase()) return {};
    const Ref<PntUndoLayerStack> record = orNone<PntUndoLayerStack>([&] {
        return makeRef<PntUndoLayerStack>(state, canvas, stack->activeId(), stack,
                                          stack->activeLayer(), "SidLayerStack");
    });
    if (file) fileRecord(record.get());
    return record;
}

Ref<PntUndoStroke> recordLayer(FacadeState& state, std::int32_t canvas, std::int32_t layerId,
                               bool file) {
    canvas = state.canvases.resolve(canvas);
    LayerStack* const stack = state.stackAt(canvas);
    Layer* const layer = stack ? stack->layerById(layerId) : nullptr;
    if (!layer || layer->asGroup() || layer->holdsShapes()) return {};
    if (!state.undo.isActive() || !undoDatabase()) return {};
    const Ref<PntUndoStroke> record = orNone<PntUndoStroke>([&] {
        return makeRef<PntUndoStroke>(state, canvas, layer->id(), stack, layer,
                                      layer->colorImageRef(), layer->stencilImage(), "SidStroke");
    });
    if (file) fileRecord(record.get());
    return record;
}

// The pixels' records are made on the older stack object, which undo puts back first.
void recordStackWithLayers(FacadeState& state, std::int32_t canvas,
                           std::span<const std::int32_t> layerIds) {
    if (!state.undo.isActive() || !undoDatabase()) return;
    // A layer twice would have two children, of which the older one would be put back last.
    std::vector<std::int32_t> ids(layerIds.begin(), layerIds.end());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    std::vector<Ref<PntUndoStroke>> pixels;
    for (const std::int32_t id : ids)
        if (Ref<PntUndoStroke> record = recordLayer(state, canvas, id, false))
            pixels.push_back(std::move(record));
    const Ref<PntUndoLayerStack> stack = recordStack(state, canvas, false);
    const Ref<PntUndoCombo> combo(new PntUndoCombo(stack.get(), nullptr, nullptr, nullptr, nullptr,
                                                   false, false, "SidCombo"));
    for (const Ref<PntUndoStroke>& record : pixels) combo->addChild(record.get());
    fileRecord(combo.get());
}

void recordStackWithLayers(FacadeState& state, std::int32_t canvas,
                           const std::function<bool(Layer&)>& meant) {
    LayerStack* const stack = state.stackAt(canvas);
    if (!stack) return;
    std::vector<std::int32_t> ids;
    static_cast<void>(eachLayer(stack->parts().list, [&](Layer& layer) {
        if (meant(layer)) ids.push_back(layer.id());
        return true;
    }));
    recordStackWithLayers(state, canvas, ids);
}

// With the records gone nothing looks at what the images hang from: left there, it would hold the
// pages of every edit before a clearing for ever.
void clearUndoRecords(FacadeState& state) {
    if (PntUndoDatabase* const database = undoDatabase()) {
        database->clear();
        for (const Ref<LayerStack>& stack : state.canvases.slots)
            if (stack) stack->collapseImages();
    }
    if (!state.stroke.stamps) return;
    state.stroke.stamps->cache()->clear();
    state.stroke.stamps->setSource(nullptr, nullptr, false, 0, 0);
}

}  // namespace brushwork
