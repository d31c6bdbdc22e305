#include "image/smart/page_accessor.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "image/smart/smart_page_ref.h"

namespace brushwork {
namespace {

ilTile moved(ilTile box, std::int32_t dx, std::int32_t dy) {
    box.x += dx;
    box.y += dy;
    return box;
}

}  // namespace

ilPixel pixelOfWord(std::int32_t channels, std::uint32_t value) {
    std::array<std::uint8_t, 4> bytes;
    for (unsigned n = 0; n < 4; ++n) bytes[n] = static_cast<std::uint8_t>(value >> (8 * n));
    return ilPixel(TypeUChar, channels, bytes.data());
}

// A memory image whose buffer is another one with each page.
class PageAccessor::PageImage final : public ilSPMemoryImg {
  public:
    PageImage(std::uint8_t* data, std::uint8_t channels)
        : ilSPMemoryImg(data, pageSide, pageSide, 1, channels, TypeUChar, OrderInterleaved) {}
    void wrap(std::uint8_t* data) { adoptBuffer(data, 0); }
    [[nodiscard]] bool has(std::uint8_t channels) const { return channels_ == channels; }

  private:
    ~PageImage() override = default;
};

bool PageAccessor::wrap(std::uint8_t* data, std::uint8_t channels) {
    auto* const image = static_cast<PageImage*>(memory_.get());
    if (image && image->has(channels))
        image->wrap(data);
    else
        memory_ = Ref<ilSPMemoryImg>(new PageImage(data, channels));
    open_ = memory_.get();
    return true;
}

bool PageAccessor::openSolid(const SmartPage& page, bool asBuffer) {
    const ilPixel pixel = pixelOfWord(page.channels, page.solid);
    if (!asBuffer) {
        if (!constant_)
            constant_ = Ref<ilConstImg>(new ilConstImg(pixel));
        else
            constant_->setFill(pixel);
        open_ = constant_.get();
        return true;
    }
    if (!buffer_ || buffer_->bytes() != page.bytes())
        buffer_ = std::make_unique<ImageBuffer>(page.bytes());
    std::uint8_t* const data = buffer_->data();
    if (!data) return false;
    if (page.channels == 1)
        std::memset(data, static_cast<std::uint8_t>(page.solid), page.bytes());
    else
        std::fill_n(reinterpret_cast<std::uint32_t*>(data), pagePixels, page.solid);
    return wrap(data, page.channels);
}

bool PageAccessor::open(SmartPage& page, std::int32_t x, std::int32_t y, View view,
                        const ilImageConfig* config) {
    close();
    x_ = x;
    y_ = y;
    pinned_ = &page;
    ++page.pins;
    bool opened = false;
    try {
        if (page.inMemory())
            opened = wrap(page.data, page.channels);
        else if (page.isSolid())
            opened = openSolid(page, view == View::Write || config);
    } catch (const std::bad_alloc&) {
    }
    if (!opened) close();
    return opened;
}

void PageAccessor::close() {
    open_ = nullptr;
    if (SmartPage* const page = std::exchange(pinned_, nullptr)) unpinPage(*page);
}

// The part of a box that lies on the page, in the page's coordinates.
ilTile PageAccessor::onPage(const ilTile& box) const {
    return intersection(moved(box, -x_, -y_), flatTile(0, 0, pageSide, pageSide));
}

std::int32_t PageAccessor::read(const ilTile& box, void* buffer, const ilTile& frame,
                                const ilImageConfig* config) {
    if (!open_) return ImageUnusable;
    return open_->readRegion(onPage(box), buffer, moved(frame, -x_, -y_), config);
}

std::int32_t PageAccessor::write(const ilTile& box, const void* buffer, const ilTile& frame,
                                 const ilImageConfig* config) {
    if (!open_) return ImageUnusable;
    return open_->writeRegion(onPage(box), buffer, moved(frame, -x_, -y_), config);
}

std::int32_t PageAccessor::fill(const ilTile& box, const ilPixel& pixel,
                                const ilImageConfig* config, const ilTile* keepOut) {
    if (!open_) return ImageUnusable;
    if (!keepOut) return open_->fillRegion(onPage(box), pixel, config, nullptr);
    const ilTile kept = moved(*keepOut, -x_, -y_);
    return open_->fillRegion(onPage(box), pixel, config, &kept);
}

}  // namespace brushwork
