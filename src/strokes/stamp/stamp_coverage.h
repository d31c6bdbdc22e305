// The mask of a round tip: rows of coverage, read from a table by the distance from the middle.
#pragma once

#include <cstdint>

#include "foundation/services/vector_level.h"
#include "strokes/stamp/mask_tables.h"
#include "strokes/stamp/stamp_frame.h"

namespace brushwork::npc {

// Rows firstRow to firstRow + rows - 1 of a mask. At pixel (i, j) with (u, v) by the map's walk,
// the mask is entry min(trunc(16 sqrt(u u + v v)), last) of the profile, all in float; what isn't a
// number reads entry 0. Columns from `width` to `rowBytes` become 0.
struct CoverageJob {
    StampMap map;
    CoverageProfile profile;
    std::int32_t firstRow = 0, rows = 0;
    std::int32_t width = 0;
    std::int32_t rowBytes = 0;       // a multiple of 16, at least width
    std::uint8_t* pixels = nullptr;  // of firstRow
};
void coverRows(const CoverageJob& job, VectorLevel level = vectorLevel());

// The definition.
void coverRowsScalar(const CoverageJob& job);
// Lanes are rows, because the additions along a row hang on each other. Blocks of columns that are
// empty or solid in all lanes are stepped over.
void coverRowsSse2(const CoverageJob& job);
void coverRowsAvx2(const CoverageJob& job);

}  // namespace brushwork::npc
