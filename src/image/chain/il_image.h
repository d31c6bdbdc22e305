// ilImage: the abstract image of the engine.
//
// It holds the attributes (sizes, data type, order, colour model, coordinate space, page size,
// fill, limits) and declares the operations by which pixels are read, written, filled, copied and
// locked; classes below supply the storage.
//
// To add an image class: derive from ilImage (or ilSIDImage if it can rest on a source image), give
// it a ClassDescriptor, put the attributes that a client may set into allowedFlags_, recompute in
// update() and call the base's at its end, and implement readRegion and writeRegion. All else works
// on these two; override the rest where the class can do better.
//
// Boxes are in the image's own coordinate space unless a config names another. Failures are the
// codes of ImageStatus.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "brushwork/il_tile.h"
#include "image/chain/il_image_config.h"
#include "image/chain/il_link.h"
#include "image/chain/il_page.h"
#include "image/chain/il_pixel.h"

namespace brushwork {

class ilRegionLock;

enum ImageKind : std::int32_t {
    KindMemory = 1,
    KindPlain = 6,
    KindPattern = 8,
    KindSmart = 100,
};

enum class CopyDirection {
    FromOther,  // this image is the destination
    ToOther,    // this image is the source
};

enum class ClipTo { Image, ImageAndBorder };

class ilImage : public ilLink {
  public:
    static const ClassDescriptor descriptor;

  protected:
    ~ilImage() override;
    void update() override;

  public:
    [[nodiscard]] const char* className() const override;
    [[nodiscard]] const ClassDescriptor& classDescriptor() const override;

    // Slots 7 to 19, in this order.
    virtual std::int32_t setFill(const ilPixel& pixel);
    // `buffer` holds the pixels of `frame`, a box in the image's coordinates, laid out as `config`
    // says (null: as the image). Copies those of `box`; what of the box lies outside the image
    // becomes the fill pixel, and the rest of the frame stays as it is.
    virtual std::int32_t readRegion(const ilTile& box, void* buffer, const ilTile& frame,
                                    const ilImageConfig* config = nullptr) = 0;
    // The other way; what lies outside the image is left out.
    virtual std::int32_t writeRegion(const ilTile& box, const void* buffer, const ilTile& frame,
                                     const ilImageConfig* config = nullptr) = 0;
    // Copies a box between this image and `other`, where its corner lies at (ox, oy, oz). Values
    // travel as they are, converted to the target's type; colour models never change them. Images
    // of two coordinate spaces exchange what a viewer would see: in `other` the box lies in its own
    // space, with its sizes exchanged if one of the two is transposed.
    //
    // A config tells by its channels, offset and list which channels of `other` take part: its
    // channel i pairs with channel i of this image. Without channels it means as many as this image
    // has. A channel without a partner stays as it is.
    virtual std::int32_t copyRegion(const ilTile& box, ilImage& other, std::int32_t ox,
                                    std::int32_t oy, std::int32_t oz, const ilImageConfig* config,
                                    CopyDirection direction);
    // Fills the box, but not what of it lies in `keepOut`, if that is given.
    virtual std::int32_t fillRegion(const ilTile& box, const ilPixel& pixel,
                                    const ilImageConfig* config = nullptr,
                                    const ilTile* keepOut = nullptr);
    // A transfer that no class implements.
    virtual std::int32_t transferRegion(const ilTile& box, ilImage& other,
                                        const ilImageConfig* config);
    // Locks the pages of a box, and with a config only the groups that hold one of its channels.
    // The box is first mapped from the config's coordinate space and cut to the image. Null if the
    // image isn't sound or memory is short. `mode` is a set of LockMode bits. The caller owns the
    // lock; destroying it unlocks. (A lock can fail, too: ask its result.)
    [[nodiscard]] virtual std::unique_ptr<ilRegionLock> lockRegion(const ilTile& box,
                                                                   const ilImageConfig* config,
                                                                   std::uint32_t mode);
    // Between this image's coordinates and those of its parents. Here: unchanged.
    virtual void mapToParent(float& x, float& y);
    virtual void mapFromParent(float& x, float& y);
    [[nodiscard]] virtual std::int32_t statusQuery();
    // Fills in page and status of each request. Answers 0 or the last failure. Here each page is a
    // copy of its pixels, read when it is locked and not written back.
    virtual std::int32_t lockPages(std::span<PageLockRequest> requests, std::uint32_t mode);
    virtual void unlockPages(std::span<PageLockRequest> requests);
    [[nodiscard]] virtual std::int32_t argumentQuery(std::intptr_t argument);

    // Attributes. A getter brings the image up to date first; it never fails.
    [[nodiscard]] std::int32_t sizeX();  // along the axes of the image's own coordinate space
    [[nodiscard]] std::int32_t sizeY();
    [[nodiscard]] std::int32_t sizeZ();
    [[nodiscard]] std::int32_t channels();
    // As a viewer sees it: in a transposed space x is the height.
    [[nodiscard]] std::int32_t width();
    [[nodiscard]] std::int32_t height();
    // Exchanged if just one of that space and the image's own is transposed.
    [[nodiscard]] Extent<std::int32_t> sizeIn(std::int32_t coordSpace);
    [[nodiscard]] Extent<std::int32_t> pageSizeIn(std::int32_t coordSpace);
    [[nodiscard]] ilTile box();  // 0, 0, 0 and the sizes
    [[nodiscard]] std::int32_t dataType();
    [[nodiscard]] std::int32_t order();
    [[nodiscard]] std::int32_t colorModel();
    [[nodiscard]] std::int32_t coordSpace();
    [[nodiscard]] std::int32_t storageMode();
    [[nodiscard]] std::int32_t imageKind() const { return imageKind_; }
    [[nodiscard]] ilXYZCstruct<std::int32_t> pageSize();
    [[nodiscard]] std::size_t pageBytes();
    [[nodiscard]] ilXYZCstruct<std::int32_t> pageBorder();  // c unused
    [[nodiscard]] ilPixel fill();
    // One channel, or for a negative channel the smallest or largest of all.
    [[nodiscard]] double getMinValue(std::int32_t channel = -1);
    [[nodiscard]] double getMaxValue(std::int32_t channel = -1);
    [[nodiscard]] double scaleMin();
    [[nodiscard]] double scaleMax();
    [[nodiscard]] std::int32_t maxParents() const { return maxParents_; }
    // The config with this image's own values for its wildcards; without one the image's own.
    [[nodiscard]] ilImageConfig completed(const ilImageConfig* config);

    // Setters answer ImageNotAllowed where the class doesn't let clients set the attribute, or for
    // a channel that no ilPixel can hold, else 0. What was set no default replaces.
    std::int32_t setSize(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t channels);
    std::int32_t setSizeX(std::int32_t x);
    std::int32_t setSizeY(std::int32_t y);
    std::int32_t setSizeZ(std::int32_t z);
    std::int32_t setChannels(std::int32_t channels);
    std::int32_t setDataType(std::int32_t type);
    std::int32_t setOrder(std::int32_t order);
    std::int32_t setColorModel(std::int32_t model);
    std::int32_t setCoordSpace(std::int32_t space);
    std::int32_t setStorageMode(std::int32_t mode);                              // not for children
    std::int32_t setPageSize(std::int32_t x, std::int32_t y, std::int32_t z);    // not for children
    std::int32_t setPageBorder(std::int32_t x, std::int32_t y, std::int32_t z);  // not for children
    std::int32_t setFillChannel(double value, std::int32_t channel);
    // Limits hold up to four channels; further ones read as the last.
    std::int32_t setMinValue(const ilPixel& pixel);
    std::int32_t setMaxValue(const ilPixel& pixel);
    std::int32_t setMinValue(double value, std::int32_t channel);  // negative: every channel
    std::int32_t setMaxValue(double value, std::int32_t channel);
    std::int32_t setScale(double min, double max);     // doesn't make the image stale
    std::int32_t setScaleFromType(std::int32_t type);  // 0: the image's own

    // ImageNoSuchParent for a slot outside 0 to maxParents() - 1.
    std::int32_t setParent(ilLink* parent, std::int32_t slot);
    [[nodiscard]] ilImage* parentImage(std::int32_t slot = 0);

    // One pixel, in the pixel's own type; an untyped pixel takes the image's.
    std::int32_t readPixel(std::int32_t x, std::int32_t y, std::int32_t z, ilPixel& pixel);
    std::int32_t writePixel(std::int32_t x, std::int32_t y, std::int32_t z, const ilPixel& pixel);

    // Cuts the box to the image; 0 if it was inside, ImageClipped if it was cut. A box that lies
    // outside is left with an extent of 0.
    std::int32_t clip(ilTile& box, ClipTo to = ClipTo::Image);

  protected:
    ilImage();

    // Helpers of update(), in the order in which it best calls them; ilImage::update() runs
    // setDefaultLimits(false) and adaptFill() itself. Each respects what a client has set.
    void setDefaultColorModel(bool fourAreMultiSpectral = false);
    // ImageColorMismatch if the model doesn't fit a channel count that a client set; else the
    // model decides the count.
    void reconcileColorModel();
    // A c below 1 means what the order implies: one channel, or all.
    void setDefaultPageSize(std::int32_t x, std::int32_t y, std::int32_t z, std::int32_t c);
    // The data type's; `forgetClient` first takes back that a client had set any.
    void setDefaultLimits(bool forgetClient);
    void adaptFill();
    [[nodiscard]] bool needsConversion(ilImage& other, const ilImageConfig* config);

    std::int32_t sizeX_ = 1, sizeY_ = 1, sizeZ_ = 1, channels_ = 1;
    std::int32_t dataType_ = TypeUChar;
    std::int32_t order_ = OrderInterleaved;
    std::int32_t colorModel_ = ColorGreyMinIsBlack;
    std::int32_t imageKind_ = KindPlain;
    std::int32_t coordSpace_ = SpaceLowerLeft;
    std::int32_t storageMode_ = 1;
    ilPixel fill_ = ilPixel::untyped();
    ilPixel minValue_{TypeDouble, 1};
    ilPixel maxValue_{TypeDouble, 1};
    double scaleMin_ = 0.0, scaleMax_ = 0.0;
    std::size_t pageBytes_ = 0;
    std::int32_t pageX_ = 0, pageY_ = 0, pageZ_ = 0, pageC_ = 0;
    std::int32_t borderX_ = 0, borderY_ = 0, borderZ_ = 0;
    std::int32_t reserved_ = 0;
    std::int32_t maxParents_ = 0;

  private:
    template <class T>
    std::int32_t setAttribute(T& attribute, const T& value, std::uint32_t flag,
                              std::uint32_t modifiers = 0);
    std::int32_t setChannelOf(ilPixel& pixel, double value, std::int32_t channel,
                              std::uint32_t flag);
    void refreshPageBytes();
    std::int32_t setLimit(ilPixel& limit, double value, std::int32_t channel, std::uint32_t flag);
};

}  // namespace brushwork
