// InputPages: one input of a blender during a run. It knows where the image's pages lie in the
// blend's coordinates, locks them, and holds the locks until all are given back at once.
#pragma once

#include <cstdint>
#include <vector>

#include "blending/core/work_records.h"

namespace brushwork::npc {

// A locked page, in the blend's coordinates.
struct PageView {
    WideBox area;                  // what this page is asked for; it holds the place that was asked
    std::uint8_t* data = nullptr;  // null: the page can't be had, and the area is to be left alone
    std::int64_t x = 0, y = 0;     // of the first pixel of data
    std::int32_t stride = 0;       // pixels from row to row
};

class InputPages {
  public:
    // Takes the slot's image, until end(), as it is now. False for an image whose pixels aren't
    // interleaved bytes: it can't be blended. A slot without an image is fine.
    [[nodiscard]] bool begin(const BlendSlot& slot);
    // Was it begun with such a slot?
    [[nodiscard]] bool serves(const BlendSlot& slot) const;
    // Gives back all locks and forgets the image.
    void end();

    [[nodiscard]] bool isBound() const { return bool(image_); }
    [[nodiscard]] std::size_t lockCount() const { return locked_.size(); }
    // The part of the box in which the image has pixels. Smart and pattern images have them
    // everywhere, as far as places can be told in 32 bits; what is written ends at the limit of
    // smart images.
    [[nodiscard]] WideBox clipped(const WideBox& box) const;
    [[nodiscard]] std::int32_t channels() const { return channels_; }

    // The page that holds a place of the clipped box. Locked once, however often it is asked for
    // in a row.
    [[nodiscard]] PageView pageAt(std::int64_t x, std::int64_t y);
    void unlock();

  private:
    enum class Layout {
        WholeImage,  // one page, the image's buffer
        Grid,        // pages lie on a grid from the image's corner
        Floating,    // each page tells where it lies
    };
    struct Place {
        std::int32_t x, y;
    };

    [[nodiscard]] bool takePageSize(ilImage& image);
    [[nodiscard]] ilPage* lockedPage(Place place);
    [[nodiscard]] PageView wholeImage();
    [[nodiscard]] PageView gridPage(std::int64_t x, std::int64_t y);
    [[nodiscard]] PageView floatingPage(std::int64_t x, std::int64_t y);

    Ref<ilImage> image_;
    Layout layout_ = Layout::Grid;
    bool bounded_ = true;
    std::uint32_t mode_ = 0;                  // for lockPages
    std::int64_t offsetX_ = 0, offsetY_ = 0;  // of the image in the blend
    std::int32_t sizeX_ = 0, sizeY_ = 0;      // of a bounded image
    std::int32_t channels_ = 0;
    std::int32_t pageX_ = 0, pageY_ = 0;  // pixels of a page, border included
    std::int32_t borderX_ = 0, borderY_ = 0;
    std::vector<PageLockRequest> locked_;  // in the order of the locks
};

}  // namespace brushwork::npc
