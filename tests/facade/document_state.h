// All that a document shows, as lines of text: structure, attributes, pixels, the flat picture.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "brushwork/paint_manager.h"

namespace brushwork::test {

using DocumentState = std::vector<std::string>;

inline std::uint64_t hashOf(const void* bytes, std::size_t count, std::uint64_t hash) {
    const auto* const at = static_cast<const unsigned char*>(bytes);
    std::size_t n = 0;
    for (; n + 8 <= count; n += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, at + n, 8);
        hash = (hash ^ word) * 1099511628211u;
        hash ^= hash >> 29;
    }
    for (; n < count; ++n) hash = (hash ^ at[n]) * 1099511628211u;
    return hash;
}

inline constexpr std::uint64_t hashStart = 14695981039346656037u;

template <class... Values>
std::string textOf(const char* pattern, Values... values) {
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, pattern, values...);
    return buffer;
}

// Of what isn't blank, and where that lies; pixels far from the canvas count by their box alone.
inline std::string imageText(const ImageRef& image) {
    if (!image) return "none";
    constexpr ilTile near{-600, -600, 0, 1800, 1800, 1};
    // Bounds of one channel say how far was painted, not what differs from the fill.
    const ilTile box = image.channels() == 1 ? flatTile(-128, -128, 512, 512) : image.bounds();
    const ilTile part = intersection(box, near);
    std::uint64_t hash = hashStart;
    if (!part.isEmpty()) {
        std::vector<unsigned char> pixels(static_cast<std::size_t>(part.nx) *
                                          static_cast<std::size_t>(part.ny) *
                                          static_cast<std::size_t>(image.channels()));
        image.read(part, pixels.data());
        hash = hashOf(pixels.data(), pixels.size(), hash);
    }
    if (box.isEmpty()) return textOf("%d empty", image.channels());
    return textOf("%d (%d,%d %dx%d) %016llx", image.channels(), box.x, box.y, box.nx, box.ny,
                  static_cast<unsigned long long>(hash));
}

// Undo brings whole offsets back.
inline std::string layerText(PaintManager& manager, std::int32_t id) {
    float x = 0.0f;
    float y = 0.0f;
    static_cast<void>(manager.position(id, &x, &y));
    std::string line = textOf("layer %d in %d '%s'", id, manager.groupOf(id),
                              manager.layerName(id).toUtf8().c_str());
    line += textOf(" %c%c%c%c%c%c%c", manager.isVisible(id) ? 'V' : '-',
                   manager.isLocked(id) ? 'L' : '-', manager.isEnabled(id) ? 'E' : '-',
                   manager.isGroup(id) ? 'G' : '-', manager.isMask(id) ? 'M' : '-',
                   manager.isStencil(id) ? 'S' : '-', manager.isShapeLayer(id) ? 'H' : '-');
    line += textOf(" %a mode %d label %u shapes %d at (%d,%d)",
                   static_cast<double>(manager.opacity(id)), manager.blendMode(id),
                   manager.labelColor(id), manager.shapeCount(id), static_cast<int>(x),
                   static_cast<int>(y));
    return line + " color " + imageText(manager.layerImage(id)) + " stencil " +
           imageText(manager.layerStencil(id));
}

// Screen: what readCanvas answers.
inline std::string screenText(PaintManager& manager, std::int32_t canvas) {
    const ilTile box = manager.canvasBounds(canvas);
    if (box.isEmpty()) return "no screen";
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(box.nx) *
                                      static_cast<std::size_t>(box.ny));
    manager.readCanvas(canvas, pixels.data());
    return textOf("screen %016llx", static_cast<unsigned long long>(
                                        hashOf(pixels.data(), pixels.size() * 4, hashStart)));
}

inline DocumentState stateOf(PaintManager& manager) {
    DocumentState state;
    const std::int32_t front = manager.currentCanvas();
    for (std::int32_t canvas = 0, found = 0; found < manager.canvasCount(); ++canvas) {
        if (!manager.hasCanvas(canvas)) continue;
        ++found;
        const ilTile box = manager.canvasBounds(canvas);
        state.push_back(textOf("canvas %d (%d,%d %dx%d)", canvas, box.x, box.y, box.nx, box.ny));
        std::vector<std::uint32_t> pixels(static_cast<std::size_t>(box.nx) *
                                          static_cast<std::size_t>(box.ny));
        if (manager.readFlatImage(canvas, pixels.data()))
            state.push_back(
                textOf("flat %016llx", static_cast<unsigned long long>(
                                           hashOf(pixels.data(), pixels.size() * 4, hashStart))));
        state.push_back(screenText(manager, canvas));
        // Nothing of what is kept between presents is out of date.
        manager.refreshDisplay(canvas);
        if (screenText(manager, canvas) != state.back()) state.push_back("stale screen");
        // Copies of a canvas have layers of equal ids, which mean those of the one in front.
        manager.setCurrentCanvas(canvas);
        for (std::int32_t n = 1; n <= manager.layerCount(true, canvas); ++n)
            state.push_back(layerText(manager, manager.layerIdAt(n, true, canvas)));
        state.push_back(textOf("active %d", manager.activeLayerId(canvas)));
        state.push_back(textOf("selected %d ", manager.hasSelection()) +
                        layerText(manager, manager.selectionLayerId(canvas)));
    }
    manager.setCurrentCanvas(front);
    return state;
}

// Lines of one that the other lacks, by their number; empty for equal states.
inline std::string differences(const DocumentState& wanted, const DocumentState& got) {
    std::string text;
    for (std::size_t n = 0; n < std::max(wanted.size(), got.size()); ++n) {
        if (n < wanted.size() && n < got.size() && wanted[n] == got[n]) continue;
        text += "\n- " + (n < wanted.size() ? wanted[n] : "nothing");
        text += "\n+ " + (n < got.size() ? got[n] : "nothing");
    }
    return text;
}

}  // namespace brushwork::test
