// An image tip's shape and colours, read bilinearly from a padded table.
#pragma once

#include <cstdint>

#include "foundation/services/vector_level.h"
#include "strokes/stamp/padded_table.h"
#include "strokes/stamp/stamp_frame.h"

namespace brushwork::npc {

// Rows firstRow to firstRow + rows - 1. Pixel (i, j) lies at (u, v) of the table by the map's walk
// (see StampFrame::toTable). Places that aren't above 0 and below the sizes plus 1 read as 0.
// Between cells by 8-bit fractions: ((c0 (256 - a) + c1 a) (256 - b) + (c2 (256 - a) + c3 a) b)
// >> 16.
struct SamplingJob {
    StampMap map;
    TableView table;
    std::int32_t firstRow = 0, rows = 0;
    std::int32_t width = 0;          // pixels
    std::int32_t rowBytes = 0;       // of the pixels written, a multiple of 16
    std::uint8_t* pixels = nullptr;  // of firstRow
};

// One channel: each mask pixel becomes ((t + 1) * mask) >> 8. Columns of padding must hold 0.
void multiplyShape(const SamplingJob& job, VectorLevel level = vectorLevel());
// Four channels: each pixel becomes the one read. Columns of padding become 0.
void sampleColors(const SamplingJob& job, VectorLevel level = vectorLevel());

// The definitions.
void multiplyShapeScalar(const SamplingJob& job);
void sampleColorsScalar(const SamplingJob& job);
// Lanes are rows.
void multiplyShapeSse2(const SamplingJob& job);
void multiplyShapeAvx2(const SamplingJob& job);
void sampleColorsSse2(const SamplingJob& job);
void sampleColorsAvx2(const SamplingJob& job);

}  // namespace brushwork::npc
