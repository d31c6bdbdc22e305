// What animation tests stand on: a host whose documents are valid while open, undo levels as a user
// steps through them, and digests of canvases.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "brushwork/animation_manager.h"
#include "brushwork/host_call_table.h"
#include "brushwork/pnt_undo_database.h"
#include "facade/facade_state.h"

namespace brushwork::test {

inline std::uint64_t digestOf(const std::vector<std::uint8_t>& bytes, std::uint64_t hash) {
    const auto mix = [&hash](std::uint64_t word) {
        hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 29;
    };
    std::size_t n = 0;
    for (; n + 8 <= bytes.size(); n += 8) {
        std::uint64_t word;
        std::memcpy(&word, &bytes[n], sizeof word);
        mix(word);
    }
    for (; n < bytes.size(); ++n) mix(bytes[n]);
    return hash;
}

inline std::uint64_t digestOf(const ImageRef& image, const ilTile& box, std::uint64_t hash) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(box.nx) *
                                    static_cast<std::size_t>(box.ny) *
                                    static_cast<std::size_t>(image.channels()));
    if (!bytes.empty()) image.read(box, bytes.data());
    return digestOf(bytes, hash);
}

// Its flat picture, its selection, and its layers' names and pixels.
inline std::uint64_t canvasDigest(PaintManager& paint, std::int32_t canvas) {
    LayerStack* const stack = paint.state().stackAt(canvas);
    if (!stack) return 0;
    const ilTile box = paint.canvasBounds(canvas);
    std::vector<std::uint8_t> flat(static_cast<std::size_t>(box.nx) *
                                   static_cast<std::size_t>(box.ny) * 4);
    paint.readFlatImage(canvas, flat.data());
    std::uint64_t hash = digestOf(flat, 14695981039346656037u);
    const auto add = [&](Layer& layer) {
        const std::string name = layer.name().toUtf8();
        hash = digestOf({name.begin(), name.end()}, hash);
        if (ilSmartImage* const image = layer.smartColor())
            hash = digestOf(ImageRef(image), flatTile(-4, -4, box.nx + 8, box.ny + 8), hash);
        return true;
    };
    static_cast<void>(eachLayer(stack->parts().list, add));
    if (Layer* const selection = stack->selectionLayer()) add(*selection);
    return hash;
}

class AnimationHost {
  public:
    AnimationHost() {
        current_ = this;
        hostCallTable().documentValid = [](std::int32_t canvas) {
            return current_->paint.hasCanvas(canvas);
        };
        setUndoDatabase(&undo);
        BrushParameters brush = BrushParameters::defaults();
        brush.radiusLow = brush.radiusHigh = 5.0f;
        paint.setBrush(brush, StrokeParameters());
    }
    AnimationHost(const AnimationHost&) = delete;
    AnimationHost& operator=(const AnimationHost&) = delete;
    ~AnimationHost() {
        clearHostCallTable();
        setUndoDatabase(nullptr);
        current_ = nullptr;
    }

    // A canvas with one layer.
    std::int32_t makeCanvas(std::int32_t width = 72, std::int32_t height = 48) {
        const std::int32_t canvas = paint.newCanvas(width, height);
        paint.newLayer(-2, 0, 0, 0, true, false);
        return canvas;
    }
    void fill(float red, float green, float blue) { paint.fillLayer({red, green, blue, 1.0f}); }
    [[nodiscard]] Ref<PntUndoOper> newest() const {
        return undo.records().empty() ? Ref<PntUndoOper>() : undo.records().back();
    }
    [[nodiscard]] std::uint64_t digest(std::int32_t canvas) { return canvasDigest(paint, canvas); }

    // The paint manager goes last: records and frames hold on to its canvases.
    PaintManager paint;
    PntUndoDatabase undo;

  private:
    static inline AnimationHost* current_ = nullptr;
};

// Notes all that it hears.
class NotingListener final : public FrameListener {
  public:
    void currentFrameChanged(std::uint32_t number) override { shown.push_back(number); }
    void frameChanged(std::uint32_t at, std::uint32_t number) override {
        lastAt = at;
        changed.push_back(number);
    }
    void frameSelected(std::uint32_t number) override { selected.push_back(number); }
    void forget() {
        shown.clear();
        changed.clear();
        selected.clear();
    }

    std::vector<std::uint32_t> shown, changed, selected;
    std::uint32_t lastAt = 0;
};

}  // namespace brushwork::test
