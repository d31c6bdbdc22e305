#include "document/stack/host_view.h"

#include "foundation/host/host_canvas.h"

namespace brushwork {
namespace {

SampleMode filterOf(float number) {
    // 2 reads as 1.
    return number >= 1.0f ? SampleMode::Bilinear : SampleMode::Nearest;
}

}  // namespace

HostView hostViewOf(const StackParts& stack) {
    HostView view;
    float outputs[8] = {};
    if (!hostViewParameters(stack.plane.surface(), outputs)) return view;
    view.x = outputs[0];
    view.y = outputs[1];
    if (!(outputs[2] > 0.0f)) return view;
    view.scale = outputs[2];
    view.filterX = filterOf(outputs[3]);
    view.filterY = filterOf(outputs[4]);
    return view;
}

}  // namespace brushwork
