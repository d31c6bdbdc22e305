// ilSmartImage: the image that layers and masks are made of. Sparse, without bounds up to a limit
// of 102400 pixels on either side of zero, shared page by page and copied on write.
//
//     const Ref<ilSmartImage> layer(new ilSmartImage(ilPixel(TypeUChar, 4)));
//     layer->writeRegion(box, pixels, box);
//     const Ref<ilSmartImage> child(new ilSmartImage(layer.get()));  // holds what differs
//     child->setPixel(10, 20, 0xFF0000FF);                           // one page is copied
//     child->pushToSource();                                         // and given to the parent
//
// Pixels are bytes: 1 channel, or 4 (red, green, blue, alpha, premultiplied), interleaved, row 0 at
// the bottom. A uniform image holds no memory; a child holds what was written to it. Who writes to
// a parent of live children takes the copy: a child keeps every page it has looked up, and slots it
// hasn't looked up follow the parent.
//
// Every entry point takes the image lock while that is engaged. A damaged image is noticed by its
// signatures, logged, and left alone.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "brushwork/ref.h"
#include "image/chain/il_sid_image.h"
#include "image/memory/image_lock.h"
#include "image/smart/kept_pages.h"
#include "image/smart/page_source.h"
#include "image/smart/page_walk.h"
#include "image/smart/smart_bounds.h"
#include "image/smart/smart_children.h"
#include "image/smart/smart_page_table.h"

namespace brushwork {

class ilSmartImage : public ilSIDImage, private PageSource {
  public:
    static const ClassDescriptor descriptor;

    // What a child takes over from its parent beside pixels.
    struct Options {
        bool trackAlpha = false;
    };

    // One channel of 0, empty, without a source.
    ilSmartImage();
    // A fill pixel of 1 or 4 bytes; its channel count is the image's.
    explicit ilSmartImage(const ilPixel& fill);
    // A child. On a smart parent it starts without pages of its own; any other parent's pixels come
    // in as they are read. A parent of bits gives a status of ImageUnusable.
    explicit ilSmartImage(ilImage* parent);
    ilSmartImage(ilImage* parent, const Options& options);

  protected:
    // Children that live take what they saw through this image, and rest on its source.
    ~ilSmartImage() override;
    void update() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;

    // Places that nobody has written, inside the bounds too, show the new fill; what was written
    // stays.
    std::int32_t setFill(const ilPixel& pixel) override;
    std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig* config = nullptr) override;
    // Widens the bounds by the box.
    std::int32_t writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                             const ilImageConfig* config = nullptr) override;
    // Between smart images of equal channels, by offsets that are multiples of 128, whole pages are
    // shared and not copied.
    std::int32_t copyRegion(const ilTile& box, ilImage& other, std::int32_t ox, std::int32_t oy,
                            std::int32_t oz, const ilImageConfig* config,
                            CopyDirection direction) override;
    // Pages that are covered whole turn solid. What lies in `keepOut` is left alone.
    std::int32_t fillRegion(const ilTile& box, const ilPixel& pixel,
                            const ilImageConfig* config = nullptr,
                            const ilTile* keepOut = nullptr) override;
    // Requests name any pixel of their page. A locked page keeps its address until it is unlocked;
    // a lock with LockWrite copies a shared page first. Every lock widens the bounds by its page.
    std::int32_t lockPages(std::span<PageLockRequest> requests, std::uint32_t mode) override;
    void unlockPages(std::span<PageLockRequest> requests) override;
    void setSource(ilImage* image) override;
    // Gives the pages that were written here to the source, which also takes this image's fill and
    // bounds. ImageNotOneParent without exactly one source.
    std::int32_t pushToSource() override;
    // Parent slot 0, if that is the only one.
    [[nodiscard]] ilSIDImage* source() override;
    void bounds(ilTile& tile) override;

    // The image as this class; null for any other image and for null.
    [[nodiscard]] static ilSmartImage* from(ilImage* image);
    [[nodiscard]] static bool isSmartImage(ilImage* image);

    // One pixel; the low byte for one channel. A place beyond the limit reads as the fill, and what
    // is written there is lost.
    [[nodiscard]] std::uint32_t getPixel(std::int32_t x, std::int32_t y);
    void setPixel(std::int32_t x, std::int32_t y, std::uint32_t value);

    // A new image without a source that shares all pages.
    [[nodiscard]] Ref<ilSmartImage> clone();
    // Makes this image hold every page of the box (null: of its bounds) itself, with `pull` in
    // memory or solid.
    void materialize(const ilTile* box, bool pull);
    // Widens the bounds to whole pages, `margin` pixels further on each side first.
    void growToPages(std::int32_t margin);
    // Whether the box holds one value, which `value` gets. Without `realize` only solid pages
    // count; with it pixels are looked at.
    bool isSolid(const ilTile& box, std::uint32_t& value, bool realize);
    // The class that all pages of the box share; Mixed if they differ, NoPage if there is none.
    // Only known classes count unless `force` has unknown ones looked at.
    [[nodiscard]] AlphaClass alphaClassOf(const ilTile& box, bool force);
    // What the page that holds a pixel shows, of 4 channels: looked at once after each write. A
    // page that somebody may be writing to isn't looked at.
    struct PageLook {
        bool isSolid = false;
        std::uint32_t solid = 0;
        // Cells with something other than 0, as in SmartPage; those that aren't known count.
        std::uint64_t filledCells = ~std::uint64_t{0};
    };
    [[nodiscard]] PageLook lookAtPage(std::int32_t x, std::int32_t y);
    // The same of a page that will be read: one that isn't solid, nor known to be empty, is kept.
    // Null `data` for any other, and for one that can't be had. Who wants no cells gets all.
    struct PageSight : PageLook {
        std::uint8_t* data = nullptr;  // for reading
    };
    [[nodiscard]] PageSight keepPage(std::int32_t x, std::int32_t y, bool wantsCells,
                                     KeptPages& kept);
    // Repairs pixels whose colours exceed their alpha, as far as the image shows what was meant.
    void sanitizeAlpha();
    void prefetch(const ilTile& box);

    // Bounds cut to pages that hold something other than the fill.
    void shrinkToPages();
    // Bounds cut to the pixel. An image of one channel whose fill isn't 0 shrinks only if forced.
    void shrinkBounds(bool force = false);
    void setBounds(const ilTile& box, bool forceTrim = false);
    // Keeps the bounds at this box from now on.
    void setFixedBounds(const ilTile& box);
    void clearFixedBounds();
    [[nodiscard]] bool hasFixedBounds() const { return boxes_.hasFixed; }

    // With tracking on every writer clears allOpaqueClass unless the written page's alpha class is
    // known.
    void setTrackAlpha(bool on);
    [[nodiscard]] bool trackAlpha() const { return trackAlpha_; }
    [[nodiscard]] bool allOpaqueClass() const { return allOpaqueClass_; }

    [[nodiscard]] const ilTile& modified() const { return boxes_.modified; }
    [[nodiscard]] std::uint32_t imageSerial() const { return imageSerial_; }
    [[nodiscard]] const SmartChildren& children() const { return children_; }
    [[nodiscard]] ilSmartImage* smartSource();
    // For cost models and tests.
    [[nodiscard]] SmartPageTable& pages() { return pages_; }

  private:
    // Counts the image with the page cache, and holds the image lock while members come and go.
    struct Registration {
        Registration();
        ~Registration();
        std::optional<ImageLockScope> lock;
    };
    class LockedPage;
    // A page of a reader's own, in the place of a solid one that has more holders.
    struct Lent {
        const SmartPage* page;
        SmartPageRef former;
    };

    // PageSource
    [[nodiscard]] bool hasParent() override;
    [[nodiscard]] const ilTile& initialBounds() const override { return boxes_.initial; }
    [[nodiscard]] SmartPageRef parentPage(std::int32_t x, std::int32_t y) override;

    void begin(const ilPixel& fill);
    void beginOn(ilImage& parent);
    // Guard and table; the first failure is logged and sets the failure flag.
    [[nodiscard]] bool isSound() const;
    // Starts an operation: ImageOk if the image is sound and up to date.
    [[nodiscard]] std::int32_t beginOperation();
    [[nodiscard]] std::uint32_t wordOf(const ilPixel& pixel) const;

    // Bounds.
    bool applyBounds(const ilTile& box, bool forceTrim = false);  // false: no memory, as before
    void grow(const ilTile& box);
    void refreshSizes();
    void noteModified(const ilTile& box) {
        if (!box.isEmpty()) boxes_.modified = unionOf(boxes_.modified, box);
    }
    void noteAlpha(const SmartPage& page);

    // Whether a buffer of that config holds this image's pixels as they are, all channels, rows of
    // this image's own coordinate space.
    [[nodiscard]] bool isPlain(const ilImageConfig* config) const;
    [[nodiscard]] bool takesAllChannels(const ilImageConfig* config) const;
    [[nodiscard]] bool isTurned(const ilImageConfig* config) const;
    std::int32_t readTurned(const ilTile& box, void* buffer, const ilTile& frame,
                            const ilImageConfig& config);
    std::int32_t writeTurned(const ilTile& box, const void* buffer, const ilTile& frame,
                             const ilImageConfig& config);
    std::int32_t fillTurned(const ilTile& box, const ilPixel& pixel, const ilImageConfig& config,
                            const ilTile* keepOut);
    // What of `box` lies outside `inside` becomes the fill in the buffer.
    void fillBeyond(const ilTile& box, const ilTile& inside, void* buffer, const ilTile& frame,
                    const ilImageConfig* config);
    std::int32_t fillPage(SmartPageRef& slot, const ilTile& tile, const ilTile& part,
                          std::uint32_t value, const ilTile* keepOut);

    // Copies; boxes are cut to the limit, `dx` and `dy` lead from here to the other image.
    [[nodiscard]] bool copiesPlainly(const ilTile& box, ilImage& other, std::int32_t oz,
                                     const ilImageConfig* config);
    std::int32_t copyIn(const ilTile& box, ilImage& other, std::int32_t dx, std::int32_t dy);
    std::int32_t copyOut(const ilTile& box, ilImage& other, std::int32_t dx, std::int32_t dy);
    std::int32_t copyInPieces(const ilTile& box, ilImage& other, std::int32_t dx, std::int32_t dy,
                              std::int32_t dz, const ilImageConfig* config,
                              CopyDirection direction);
    bool sharePage(SmartPageRef& slot, ilSmartImage& source, std::int32_t x, std::int32_t y);
    bool lookUpPages(const ilTile& box);
    // Null for another count of channels, and for an image that can't be read.
    [[nodiscard]] SmartPageRef* slotToLookAt(std::int32_t x, std::int32_t y);
    [[nodiscard]] static PageLook lookOf(SmartPageRef& slot);
    // In memory or solid; null without memory.
    [[nodiscard]] const SmartPage* readPage(std::int32_t x, std::int32_t y);
    [[nodiscard]] bool descendsFrom(const ilSmartImage& image) const;

    std::int32_t lockPage(PageLockRequest& request, bool write);
    void unlockPage(LockedPage& page);
    void takeBack(const SmartPage& page, std::int32_t x, std::int32_t y);

    [[nodiscard]] AlphaClass classOfPart(SmartPageRef& slot, const ilTile& tile, const ilTile& box,
                                         bool force);

    void leaveParent();
    void takeParent(ilImage& parent);
    void releaseChildren();
    std::int32_t pushToSmart(ilSmartImage& parent, PageWalk& walk);
    std::int32_t pushToOther(ilImage& parent, PageWalk& walk);

    void shrinkNow();
    [[nodiscard]] bool isFillRow(std::int32_t y, std::int32_t x, std::int32_t endX);
    [[nodiscard]] bool isFillColumn(std::int32_t x, std::int32_t y, std::int32_t endY);
    void cutFillLines(ilTile& box);

    Registration registration_;  // first: the last to go
    std::uint32_t guard_ = brushwork::liveSignature;
    std::uint32_t imageSerial_ = 0;
    SmartPageTable pages_;
    SmartBounds boxes_;
    bool needsShrink_ = false;
    bool unusable_ = false;  // its parent can't be read
    bool trackAlpha_ = false;
    bool allOpaqueClass_ = true;
    SmartChildren children_;
    std::vector<Lent> lent_;
    Ref<ilSmartImage> smartParent_;
    const SmartPage* touched_ = nullptr;  // by the latest getPixel; compared, never followed
};

}  // namespace brushwork
