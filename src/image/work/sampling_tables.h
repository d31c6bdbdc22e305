// SamplingTables: reading a picture at another scale, by tables of where each column and row comes
// from.
//
//     SamplingTables tables;
//     tables.setScale(0.37f, 0.37f);
//     tables.setModes(SampleMode::Bicubic, SampleMode::Bicubic);
//     tables.read(source, 4, {0, 0, width, height}, target);
//
// Column d of the scaled picture has its middle at (d + 0.5) / scale of the source, in float; the
// weights are by steps of 1/256 pixel, rounded. Each axis has a mode of its own. Bilinear on both
// is the bilinear formula of the samplers; where an axis is bicubic the row is worked out first,
// with 6 bits of fraction, and the result is rounded. Columns and rows beyond the source's edge are
// the edge's own, in every mode: a scaled picture has no rim of fill pixels.
//
// Belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "image/chain/coord_space.h"
#include "image/work/sampling_kernels.h"
#include "image/work/scaled_rows.h"

namespace brushwork {

// A buffer for scaled pixels.
struct ScaledTarget {
    std::uint8_t* pixels = nullptr;
    std::int32_t width = 0, height = 0;
    std::ptrdiff_t rowBytes = 0;
    std::int32_t offsetX = 0, offsetY = 0;  // where the box's first pixel goes; may be negative
};

class SamplingTables {
  public:
    // Frees the table of an axis whose scale changed, by exact comparison, and marks the tables.
    void setScale(float x, float y);
    void setModes(SampleMode x, SampleMode y);

    [[nodiscard]] float scaleX() const { return x_.scale; }
    [[nodiscard]] float scaleY() const { return y_.scale; }
    [[nodiscard]] SampleMode modeX() const { return x_.mode; }
    [[nodiscard]] SampleMode modeY() const { return y_.mode; }
    // The scale changed after the last read.
    [[nodiscard]] bool dirty() const { return dirty_; }

    // Pixels of an axis at a scale: round(size * scale), halves upward; 0 for a scale that is not a
    // positive number.
    [[nodiscard]] static std::int32_t scaledSize(std::int32_t size, float scale);

    // Writes the part of `box` (in scaled pixels) that lies in the scaled picture and fits into the
    // target. Source and target must not overlap. False, with nothing written, for other channels
    // than 1 or 4, a source without pixels, a scale that is not a positive number, an unknown mode,
    // and when there is no memory.
    [[nodiscard]] bool read(const SampleSource& source, std::int32_t channels,
                            const Rect<std::int32_t>& box, const ScaledTarget& target);

  private:
    struct Axis {
        float scale = 1.0f;
        SampleMode mode = SampleMode::Nearest;
        std::vector<SamplePlace> places;  // from index `first` on
        std::int32_t first = 0;

        bool setScale(float scale);
        // The places of [begin, end), which stay until the next call; built if they aren't there.
        const SamplePlace* placesFor(std::int32_t begin, std::int32_t end);
    };

    Axis x_, y_;
    bool dirty_ = true;
};

}  // namespace brushwork
