// Corners and the lines on which outlines are sampled: those at whole quarters of a pixel, on both
// axes (outline_raster.h). What lies exactly on one counts on both of its sides.
#pragma once

#include <span>

#include "brushwork/host_call_table.h"

namespace brushwork {

// A coordinate that lies exactly on a sample line is moved off it, by 1/255 of a pixel.
[[nodiscard]] float offSampleLines(float coordinate);
// Of a closed ring of pieces, each beginning where the one before it ends: corners through which it
// runs from one side of a sample line to the other are moved off that line by as much, so that
// lines meet the ring once there. Others stay where they are: tops, and the corners of upright
// rectangles.
void passSampleLinesOnce(std::span<HostSegment> ring);

}  // namespace brushwork
