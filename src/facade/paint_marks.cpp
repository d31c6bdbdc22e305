#include "facade/paint_marks.h"

#include <cmath>
#include <span>

#include "foundation/host/host_calls.h"
#include "foundation/host/host_canvas.h"

namespace brushwork {
namespace {

constexpr std::int32_t paintMarks = 0x1f41;
constexpr std::uint32_t red = 0xff0000ffu;

void draw(const LiveStroke& stroke, std::span<const LiveStroke::Mark> marks) {
    const ImagePlane& plane = stroke.stack->parts().plane;
    if (marks.empty() || !plane.image) return;
    const ilPixel pixel(TypeUChar, 4, &red);
    for (const LiveStroke::Mark& mark : marks) {
        const ilTile square =
            flatTile(mark.x + plane.originX - 1, mark.y + plane.originY - 1, 3, 3);
        const ilTile shown = intersection(square, plane.image->box());
        if (!shown.isEmpty()) plane.image->fillRegion(shown, pixel);
    }
    if (plane.canvas) hostRequestRepaint(plane.canvas);
}

}  // namespace

void markPoint(FacadeState& state, const ViewPoint& place) {
    LiveStroke& stroke = state.stroke;
    if (hostDebugLevel() != paintMarks) return;
    stroke.marks.push_back(
        {static_cast<std::int32_t>(std::floor(place.x)) + stroke.layer->offsetXInt(),
         static_cast<std::int32_t>(std::floor(place.y)) + stroke.layer->offsetYInt()});
    draw(stroke, std::span(stroke.marks).last(1));
}

void drawMarks(const LiveStroke& stroke) {
    draw(stroke, stroke.marks);
}

}  // namespace brushwork
