// RectCopy: draws one rectangle into a target. It finds which path takes it:
//
//     the plain copy, by the image layer, where nothing changes a pixel on its way; pages of smart
//     images are shared
//     the rows (row_functions.h), block by block, for every pair that has one
//     none: the target isn't touched
//
// Blocks of one value, as smart images have where nothing was drawn, cost next to nothing: what
// would change nothing is passed over, and a solid page of the target stays solid.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "blending/paint/paint_source.h"
#include "blending/paint/paint_state.h"
#include "blending/paint/row_functions.h"
#include "blending/paint/soft_locked_alpha.h"
#include "blending/paint/source_blocks.h"
#include "blending/paint/target_block.h"
#include "blending/rows/image_blend_cache.h"
#include "brushwork/ref.h"

namespace brushwork {

class RectCopy {
  public:
    enum class Result {
        Drawn,
        Nothing,  // nothing of the rectangle is left
        NoPath,   // no path takes this source, target and pair
        Failed,   // pixels could not be read or written
    };

    // A rectangle as the painter sees it; pointers are borrowed for the call.
    struct Request {
        ilImage* target = nullptr;
        ilTile rectangle;  // before the zoom; one plane
        ilTile clip;       // of the target; an empty one doesn't clip
        PaintSource source;
        PaintFormat format;
        std::size_t rows = 0;
        float painterZoomX = 1.0F, painterZoomY = 1.0F;
        float zoomX = 1.0F, zoomY = 1.0F;
        bool nearest = true;
        BlendFactors factors;
        ScaleBias scaleBias;
        // For sources of one channel over a target of four, and for the mix.
        ilImage* stroke = nullptr;
        bool mix = false;
        const std::uint32_t* color = nullptr;
        // With it, what is drawn over keeps the target's alpha.
        bool lockAlpha = false;
        ilImage* low = nullptr;
    };

    RectCopy(const Request& request, blender::ImageBlendCache& blends)
        : request_(request), blends_(blends) {}

    [[nodiscard]] Result run();

  private:
    [[nodiscard]] bool isPlainCopy() const;
    [[nodiscard]] bool mapFits() const;
    [[nodiscard]] Result copyPlainly();
    [[nodiscard]] bool setUpSource();
    [[nodiscard]] bool chooseRow();
    [[nodiscard]] Result drawBlocks();
    [[nodiscard]] bool drawBlock(const ilTile& box);
    [[nodiscard]] std::optional<bool> drawConstant(const ilTile& box, const SourceBlock& source);
    void drawRows(const ilTile& box, const SourceBlock& source, const SourceBlock& colors);
    void separateFromTarget(Ref<ilImage>& held, ilImage*& image) const;

    Request request_;
    blender::ImageBlendCache& blends_;
    ilTile box_;     // in the target
    ilTile placed_;  // the same before the clip
    std::int32_t channels_ = 0;
    SourceBlocks source_;
    SourceBlocks strokeBlocks_;
    bool usesStroke_ = false;
    paint::Coverage coverage_ = paint::Coverage::Alpha;
    paint::RowFunction row_ = nullptr;
    bool keepsAlpha_ = false;
    std::uint8_t colorPixel_[4] = {};
    std::optional<TargetBlock> block_;
};

}  // namespace brushwork
