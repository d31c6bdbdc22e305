#include "fill/fill_surface.h"

#include <cstring>
#include <new>
#include <optional>
#include <utility>

#include "brushwork/ref.h"
#include "image/cache/smart_image_cache.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/page_accessor.h"
#include "image/smart/page_hold.h"
#include "image/smart/page_realize.h"
#include "image/smart/page_walk.h"

namespace brushwork {
namespace {

std::uint32_t wordOf(const std::uint8_t* at, bool isGrey) {
    if (isGrey) return *at;
    std::uint32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

// Reads through the page at hand, which stays in memory; writes let go of it.
class SmartFillSurface final : public FillSurface {
  public:
    explicit SmartFillSurface(ilSmartImage& image)
        : image_(&image), isGrey_(image.channels() == 1) {}
    ~SmartFillSurface() override { letGo(); }

    [[nodiscard]] bool isGrey() const override { return isGrey_; }

    [[nodiscard]] std::uint32_t get(std::int32_t x, std::int32_t y) override {
        if ((x & pageMask) != x_ || (y & pageMask) != y_ || !page_)
            open(x & pageMask, y & pageMask);
        if (!page_) return image_->pages().solidValue();
        if (page_->isSolid()) return page_->solid;
        const auto index = static_cast<std::size_t>((y - y_) * pageSide + (x - x_));
        return wordOf(page_->data + (index << page_->shift), isGrey_);
    }

    void put(std::int32_t x, std::int32_t y, std::uint32_t value) override {
        image_->setPixel(x, y, value);
        if (!page_) return;
        // A writer may have put another page there, or given a solid one memory that isn't held.
        const SmartPageRef* const slot = image_->pages().pageRef(x_, y_, false);
        if (!hold_ || !slot || slot->get() != page_)
            forget();
        else
            written_ = true;
    }

    void putSpan(std::int32_t left, std::int32_t right, std::int32_t y,
                 std::uint32_t value) override {
        forget();
        if (right - left < fewPixels) {
            for (std::int32_t x = left; x <= right; ++x) image_->setPixel(x, y, value);
        } else {
            image_->fillRegion(flatTile(left, y, right - left + 1, 1), pixelOf(value));
        }
    }

    void fillOutside(const ilTile& box, const ilTile& keepOut, std::uint32_t value) override {
        forget();
        image_->fillRegion(box, pixelOf(value), nullptr, &keepOut);
        keepFill(keepOut);
        image_->setFill(pixelOf(value));
    }

    void forget() override { letGo(); }

  private:
    static constexpr std::int32_t fewPixels = 16;  // up to here single pixels cost less

    void letGo() {
        if (!page_) return;
        const SmartPageRef kept(hold_ ? page_ : nullptr);
        hold_.reset();
        // Held pages aren't looked at for having become uniform.
        if (std::exchange(written_, false) && kept && kept->inMemory())
            SmartImageCache::instance().addScan(*kept);
        page_ = nullptr;
    }

    [[nodiscard]] ilPixel pixelOf(std::uint32_t value) const {
        return pixelOfWord(isGrey_ ? 1 : 4, value);
    }

    void open(std::int32_t x, std::int32_t y) {
        forget();
        SmartPageRef* const slot = image_->pages().pageRef(x, y, false);
        if (!slot || !realizePage(*slot, RealizeMode::Read)) return;
        page_ = slot->get();
        if (page_->inMemory()) hold_.emplace(*page_);
        x_ = x;
        y_ = y;
    }

    // Pages of the box that show the image's fill get one of their own.
    void keepFill(const ilTile& box) {
        SmartPageTable& pages = image_->pages();
        PageWalk walk(pages, box, PageWalk::Create::Yes);
        while (walk.next())
            if (walk.slot().get() == pages.defaultPage().get())
                static_cast<void>(makePageSolid(walk.slot(), pages.solidValue()));
    }

    Ref<ilSmartImage> image_;
    bool isGrey_;
    std::int32_t x_ = 0, y_ = 0;
    SmartPage* page_ = nullptr;  // the slot's; a reference of its own would make writers copy it
    std::optional<PageHold> hold_;
    bool written_ = false;
};

class PlainFillSurface final : public FillSurface {
  public:
    explicit PlainFillSurface(ilImage& image)
        : image_(&image),
          isGrey_(image.channels() == 1),
          config_(TypeUChar, OrderInterleaved, isGrey_ ? 1 : 4) {}

    [[nodiscard]] bool isGrey() const override { return isGrey_; }

    [[nodiscard]] std::uint32_t get(std::int32_t x, std::int32_t y) override {
        std::uint8_t pixel[4] = {};
        const ilTile place = flatTile(x, y, 1, 1);
        image_->readRegion(place, pixel, place, &config_);
        return wordOf(pixel, isGrey_);
    }

    void put(std::int32_t x, std::int32_t y, std::uint32_t value) override {
        putSpan(x, x, y, value);
    }

    void putSpan(std::int32_t left, std::int32_t right, std::int32_t y,
                 std::uint32_t value) override {
        image_->fillRegion(flatTile(left, y, right - left + 1, 1), pixelOf(value));
    }

    void fillOutside(const ilTile& box, const ilTile& keepOut, std::uint32_t value) override {
        image_->fillRegion(box, pixelOf(value), nullptr, &keepOut);
        image_->setFill(pixelOf(value));
    }

  private:
    [[nodiscard]] ilPixel pixelOf(std::uint32_t value) const {
        return pixelOfWord(isGrey_ ? 1 : 4, value);
    }

    Ref<ilImage> image_;
    bool isGrey_;
    ilImageConfig config_;
};

}  // namespace

std::uint32_t packColor(float red, float green, float blue, float alpha) {
    const auto byteOf = [](float value) {
        const float scaled = value * 255.0f + 0.5f;
        if (!(scaled > 0.0f)) return std::uint32_t{0};
        return scaled < 255.0f ? static_cast<std::uint32_t>(scaled) : std::uint32_t{255};
    };
    return byteOf(red) | byteOf(green) << 8 | byteOf(blue) << 16 | byteOf(alpha) << 24;
}

std::unique_ptr<FillSurface> makeFillSurface(ilImage& image) {
    const std::int32_t channels = image.channels();
    if ((channels != 1 && channels != 4) || image.dataType() != TypeUChar) return nullptr;
    if (ilSmartImage* const smart = ilSmartImage::from(&image))
        return std::unique_ptr<FillSurface>(new (std::nothrow) SmartFillSurface(*smart));
    return std::unique_ptr<FillSurface>(new (std::nothrow) PlainFillSurface(image));
}

}  // namespace brushwork
