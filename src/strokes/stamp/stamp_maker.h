// StampMaker: the mask and the colour image of a stamp, from the cache or made.
//
//     StampMaker maker(makeRef<StampImageCache>());
//     maker.setTip(stampTipOf(brush, StampColors::Kept));          // at the start of a stroke
//     const StampImages& stamp = maker.make(maker.quantized(point));
//     if (stamp.mask) blend(stamp.box, *stamp.mask, stamp.color);
//     maker.freeTables();                                          // at its end
//
// It knows nothing of layers, modes and blenders. A stamp that is found in the cache, or fits the
// images of the last one with the cache off, allocates nothing. The stroke's thread alone.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "brushwork/stamp_point.h"
#include "strokes/stamp/mask_tables.h"
#include "strokes/stamp/padded_table.h"
#include "strokes/stamp/stamp_frame.h"
#include "strokes/stamp/stamp_image_cache.h"
#include "strokes/stamp/stamp_tip.h"

namespace brushwork::npc {

// Pixel (0, 0) of both images lies at the corner of the box; columns beyond the box are 0. Only
// read, unless the colours are StampColors::Fresh. Borrowed; who holds images of the cache keeps
// them.
struct StampImages {
    ilTile box;                     // of the layer, as large as the stamp
    ilTile inked;                   // the part outside of which the mask is 0; may be empty
    ilSPMemoryImg* mask = nullptr;  // 1 channel, width a multiple of 16; null: can't be made
    std::uint8_t* maskPixels = nullptr;
    std::int32_t maskStride = 0;     // bytes from row to row, as many as the mask has columns
    ilSPMemoryImg* color = nullptr;  // 4 channels, width a multiple of 4; or null
};

class StampMaker {
  public:
    // Without a cache (null) every stamp is made.
    explicit StampMaker(Ref<StampImageCache> cache);

    // Shared with other makers; null is ignored.
    void setCache(const Ref<StampImageCache>& cache);
    [[nodiscard]] const Ref<StampImageCache>& cache() const { return lease_.cache(); }
    // Off: made into the same two images each time.
    void setCacheEnabled(bool on) { cacheEnabled_ = on; }
    [[nodiscard]] bool cacheEnabled() const { return cacheEnabled_; }
    // Whether stamps stay as they are for who holds their images. (Fresh colours don't.)
    [[nodiscard]] bool keepsImages() const { return cacheEnabled_ && lease_.cache(); }

    // The brush whose stamps are made from now on; what other brushes left in the cache goes. (An
    // image of the tip that is replaced later is noticed.)
    void setTip(const StampTip& tip);
    [[nodiscard]] const StampTip& tip() const { return tip_; }

    [[nodiscard]] StampPoint quantized(const StampPoint& point) const {
        return quantizedStamp(point, tip_.rounding());
    }
    // Of a quantised point. The images stay as they are until the next stamp or a change of the
    // cache, those from the cache as long as they are held.
    const StampImages& make(const StampPoint& quantized);
    // The tables of the tip's images and the hold on the last stamp.
    void freeTables();

  private:
    struct Job;
    [[nodiscard]] bool wants(StampColors colors) const;
    void refreshLease();
    void show(const StampImageCacheItem& item, std::int32_t x, std::int32_t y);
    bool takeFromCache(const StampKey& key);
    void makeForCache(const StampFrame& frame, const StampPoint& point, const StampKey& key);
    bool prepareMask(const StampFrame& frame, const StampPoint& point, Ref<ilSPMemoryImg>& mask,
                     Job& job);
    bool prepareColor(const StampFrame& frame, const StampPoint& point, Ref<ilSPMemoryImg>& color,
                      Job& job);

    StampTip tip_;
    StampCacheLease lease_;
    bool cacheEnabled_ = true;
    StampMaskTable maskTable_;
    PaddedTable shapeTable_, colorTable_;
    Ref<ilSPMemoryImg> scratchMask_, scratchColor_;
    Ref<StampImageCacheItem> made_;  // the last one; it may be too large for the cache
    StampImages current_;
};

}  // namespace brushwork::npc
