// ilPatternImg: a small one-channel picture, repeated without end in both directions.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "brushwork/ref.h"
#include "brushwork/reference_count.h"
#include "image/chain/il_image.h"

namespace brushwork {

// One block of a pattern: 128 rows of 128 bytes. Where the pattern ends inside the block it begins
// anew, so that a reader needs no test for the pattern's edge.
class ilPatternPage : public zn::ReferenceCount {
  public:
    static constexpr std::int32_t side = 128;
    static constexpr std::size_t bytes = 16384;

    ilPatternPage();  // no pixels
    // Zeros. The origin is a place in the pattern.
    ilPatternPage(std::int32_t x, std::int32_t y);

    [[nodiscard]] std::int32_t x() const { return x_; }
    [[nodiscard]] std::int32_t y() const { return y_; }
    [[nodiscard]] std::uint8_t* data() const { return data_.get(); }

  protected:
    ~ilPatternPage() override;

  private:
    std::int32_t x_ = 0, y_ = 0;
    std::unique_ptr<std::uint8_t[]> data_;
};

// Its pixels are reached through page locks alone, at any place of the plane: each page tells its
// origin in the caller's coordinates, its channel is the pattern's channel count, and it must be
// unlocked before the image goes. The region operations do nothing and answer 0.
class ilPatternImg : public ilImage {
  public:
    static const ClassDescriptor descriptor;

    ilPatternImg();
    explicit ilPatternImg(ilImage* source);

  protected:
    ~ilPatternImg() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;
    std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig* config = nullptr) override;
    std::int32_t writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                             const ilImageConfig* config = nullptr) override;
    std::int32_t copyRegion(const ilTile& box, ilImage& other, std::int32_t ox, std::int32_t oy,
                            std::int32_t oz, const ilImageConfig* config,
                            CopyDirection direction) override;
    std::int32_t fillRegion(const ilTile& box, const ilPixel& pixel,
                            const ilImageConfig* config = nullptr,
                            const ilTile* keepOut = nullptr) override;
    // ImageUnusable, with null pages, for an image without a pattern.
    std::int32_t lockPages(std::span<PageLockRequest> requests, std::uint32_t mode) override;
    void unlockPages(std::span<PageLockRequest> requests) override;

    // Takes a copy of a memory image's first channel; later changes of the source don't matter.
    // ImageUnusable, with the pattern as it was, for anything that is no memory image with pixels.
    std::int32_t setPattern(ilImage* source);
    // Corner (0, 0) and the pattern's width and height.
    [[nodiscard]] ilTile extent() const { return flatTile(0, 0, patternX_, patternY_); }

  private:
    [[nodiscard]] const ilPatternPage& pageAt(std::int32_t px, std::int32_t py) const;

    std::vector<Ref<ilPatternPage>> pages_;  // row by row
    std::int32_t pagesAcross_ = 0, pagesDown_ = 0;
    std::int32_t patternX_ = 0, patternY_ = 0, patternZ_ = 0, patternC_ = 0;
};

}  // namespace brushwork
