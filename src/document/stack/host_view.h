// What the host says of its view of a canvas: where it looks, how large, through which filters.
#pragma once

#include "document/stack/stack_parts.h"
#include "image/work/sampling_kernels.h"

namespace brushwork {

// A pixel p of the plane is seen at p * scale - (x, y) of the display.
struct HostView {
    float x = 0.0f, y = 0.0f, scale = 1.0f;
    SampleMode filterX = SampleMode::Nearest, filterY = SampleMode::Nearest;
    friend bool operator==(const HostView&, const HostView&) = default;
};

// Of the surface's view parameters the first three are x, y and scale, the next two the filters. A
// scale of 0, or no host: the plane as it is.
[[nodiscard]] HostView hostViewOf(const StackParts& stack);

}  // namespace brushwork
