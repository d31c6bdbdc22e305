// A picture drawn at another place, size and angle, or bent, into a new image.
//
//     const auto placing = placingByRecord(record, box, sourceX, sourceY);
//     const ilTile target = placedBox(*placing, SampleMode::Bicubic);
//     const Ref<ilSmartImage> copy = placedCopy(picture, *placing, SampleMode::Bicubic, target);
//
// The plane is that of the target: of the document, or of the display. Both halves of the work go
// page by page: empty ground costs nothing, uniform ground stays uniform.
#pragma once

#include <cstdint>
#include <optional>

#include "brushwork/il_tile.h"
#include "brushwork/ref.h"
#include "brushwork/transform_record.h"
#include "image/smart/il_smart_image.h"
#include "image/work/perspective_warp_solver.h"
#include "image/work/sampling_kernels.h"

namespace brushwork {

// Where the pixels of a source come to lie.
struct Placing {
    ilTile content;         // of the source: what is placed. What lies around it is its fill.
    ProjectiveMap forward;  // from the source's pixels to the plane
    ProjectiveMap back;     // and from the plane
    // A quad that no straight map reaches (it is concave or crossed) is bent bilinearly.
    bool folded = false;
    QuadCorners corners{};  // where the content's corners come to lie: folded only
};

// By a record, whose pivot and moves are of the plane. Pixel (0, 0) of the source lies at
// (sourceX, sourceY) of the plane before. Nothing for a scale of next to nothing and for numbers
// that aren't finite.
[[nodiscard]] std::optional<Placing> placingByRecord(const TransformRecord& record,
                                                     const ilTile& content, double sourceX,
                                                     double sourceY);
// So that the content's corners fall on the given ones, straight lines staying straight. Nothing
// for a quad without an area or of points that aren't finite.
[[nodiscard]] std::optional<Placing> placingByCorners(const QuadCorners& corners,
                                                      const ilTile& content);
// The same of another image that lies pixel on pixel with the source.
[[nodiscard]] Placing placingOf(const Placing& placing, const ilTile& content);
// The same of a reduced copy of the source, whose pixels are blocks of that many of its own.
[[nodiscard]] Placing placingOfLevel(const Placing& placing, ilSmartImage& level,
                                     std::int32_t block);

// How many pixels of the plane go to one of the source along its rows or columns, where that is the
// most; 1 for a folded quad.
[[nodiscard]] float mostScale(const Placing& placing);

// The pixels of the plane that the content reaches, soft edges included; cut to what an image can
// hold.
[[nodiscard]] ilTile placedBox(const Placing& placing, SampleMode mode);

// Draws the source into a new image with its fill: pixel (0, 0) of it is the corner of `target`.
// Samplers other than the nearest read a reduced copy for scales of a half and below, so that no
// pixel is passed over. Null without memory.
[[nodiscard]] Ref<ilSmartImage> placedCopy(ilSmartImage& source, const Placing& placing,
                                           SampleMode mode, const ilTile& target);

}  // namespace brushwork
