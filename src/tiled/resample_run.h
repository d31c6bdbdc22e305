// Resampling: triangles of a target image filled from the source of a filter.
//
//     filter->begin(&reader, 0, 0, w - 1, h - 1);
//     if (!resampleTriangles(*target, {vertices, {}}, *filter)) giveUp();
//     filter->end();
//
// Each triangle maps its corners' places in the target to their places in the source; between them
// the map is straight. Whatever the number of threads, the bytes are the same.
#pragma once

#include "tiled/resample_filter.h"
#include "tiled/tiled_image.h"
#include "tiled/triangle_walker.h"

namespace brushwork {

struct ResampleOptions {
    bool singleThread = false;  // all on the calling thread
    int processors = 0;         // to share work for; 0: those of the machine
    // Draws the edges of each triangle over the result, to see how they lie.
    bool outline = false;
    znImage::Byte4 outlineColor{{255, 0, 0, 255}};  // one channel takes the first byte
};

// The filter has begun on an image of as many channels as the target, which is another one. Only
// what of a triangle lies in the target's grid is drawn; its cells there turn into filled ones.
// With one channel all runs on the calling thread. False, with triangles left out: the filter
// hasn't begun, or no memory.
[[nodiscard]] bool resampleTriangles(znTiledImage::Image& target, const TriangleList& list,
                                     ResampleFilter& filter, const ResampleOptions& options = {});

}  // namespace brushwork
