// PageAccessor: one page as an image, so that reads, writes and fills of part of a page are those
// of memory and constant images.
//
//     PageAccessor accessor;
//     if (accessor.open(page, x, y, PageAccessor::View::Read, config))
//         accessor.read(box, buffer, frame, config);
//
// Boxes are in the smart image's coordinates; (x, y) is the page's origin there. What of a box lies
// outside the page is left alone. The accessor pins the page while it stands on it, so that memory
// that is asked for meanwhile isn't the page's own; a page that was written is on the scan list
// though, where a pin doesn't protect it: who gets memory for other pages between opening and
// closing locks it hard.
#pragma once

#include <cstdint>
#include <memory>

#include "brushwork/ref.h"
#include "image/cache/smart_page.h"
#include "image/chain/il_image.h"
#include "image/memory/image_buffer.h"
#include "image/work/il_const_img.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {

// A page's value as a pixel: the low byte for one channel, else the four bytes from the lowest up.
[[nodiscard]] ilPixel pixelOfWord(std::int32_t channels, std::uint32_t value);

class PageAccessor {
  public:
    enum class View { Read, Write };  // a solid page is written only in the accessor's own buffer

    PageAccessor() = default;
    PageAccessor(const PageAccessor&) = delete;
    PageAccessor& operator=(const PageAccessor&) = delete;
    ~PageAccessor() { close(); }

    // Wraps a page; the former one is let go. The memory image that wraps pages is reused. A solid
    // page becomes a constant image, or, for writing or with a config, a buffer full of its value.
    // False without memory and for a page in another state.
    bool open(SmartPage& page, std::int32_t x, std::int32_t y, View view,
              const ilImageConfig* config = nullptr);
    void close();
    // Null while nothing is open. Coordinates are those of the page, from 0.
    [[nodiscard]] ilImage* image() const { return open_; }

    // ImageUnusable while nothing is open.
    std::int32_t read(const ilTile& box, void* buffer, const ilTile& frame,
                      const ilImageConfig* config);
    std::int32_t write(const ilTile& box, const void* buffer, const ilTile& frame,
                       const ilImageConfig* config);
    std::int32_t fill(const ilTile& box, const ilPixel& pixel, const ilImageConfig* config,
                      const ilTile* keepOut);

  private:
    class PageImage;
    [[nodiscard]] bool wrap(std::uint8_t* data, std::uint8_t channels);
    [[nodiscard]] bool openSolid(const SmartPage& page, bool asBuffer);
    [[nodiscard]] ilTile onPage(const ilTile& box) const;

    Ref<ilSPMemoryImg> memory_;  // a PageImage over the page's data, or over buffer_
    Ref<ilConstImg> constant_;
    ilImage* open_ = nullptr;  // one of these two
    std::unique_ptr<ImageBuffer> buffer_;
    SmartPage* pinned_ = nullptr;
    std::int32_t x_ = 0, y_ = 0;
};

}  // namespace brushwork
