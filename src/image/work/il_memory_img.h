// ilMemoryImg: an image with all its pixels in one contiguous buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "image/chain/il_sid_image.h"
#include "image/memory/image_buffer.h"

namespace brushwork {

// Rows have no padding and row 0 is the bottom one. The image has no lock of its own: one thread
// owns it at a time. Its one page is the whole buffer; page locks of any place in the image answer
// that page, which lives as long as the image.
//
// A config that names another coordinate space has box and frame in that space. Channel i of the
// buffer is the image's channel config->channelAt(i); channels that the image doesn't have are left
// alone. What of the box lies outside the image is read as the fill pixel and not written.
//
// An image built from another follows it: when that one has changed, sizes, type and order are
// taken anew, and so are the pixels if they were read at once. What was written into this image
// since is then gone.
class ilMemoryImg : public ilSIDImage {
  public:
    static const ClassDescriptor descriptor;

    enum class Read { Now, Later };

    // No size, no type.
    ilMemoryImg();
    // Owns a buffer of its own, not cleared. A size below 1, or one whose bytes can't be had,
    // leaves the image without a buffer and sets ImageUnusable.
    ilMemoryImg(std::int32_t sizeX, std::int32_t sizeY, std::int32_t sizeZ, std::int32_t channels,
                std::int32_t dataType, std::int32_t order);
    // Takes size, type and order from the source, which becomes parent 0 and source, and, unless
    // told to do so later, all its pixels. A null source gives an image like the default one, with
    // ImageUnusable.
    explicit ilMemoryImg(ilImage* source, Read read = Read::Now);
    // Wraps a buffer of the caller's, which must outlive the image. Without a buffer, or with a
    // size below 1, the image is ImageUnusable.
    ilMemoryImg(void* buffer, std::int32_t sizeX, std::int32_t sizeY, std::int32_t sizeZ,
                std::int32_t channels, std::int32_t dataType, std::int32_t order);

  protected:
    ~ilMemoryImg() override;
    void update() override;

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
    std::int32_t lockPages(std::span<PageLockRequest> requests, std::uint32_t mode) override;
    void unlockPages(std::span<PageLockRequest> requests) override;
    // ImageNotOneParent without a source.
    std::int32_t pushToSource() override;

    // The pixels; null without a buffer.
    [[nodiscard]] std::uint8_t* data() { return data_; }
    [[nodiscard]] const std::uint8_t* data() const { return data_; }
    [[nodiscard]] bool ownsBuffer() const { return ownedBytes_ != 0; }
    // The image it was built from; null if it wasn't, or if that was taken away.
    [[nodiscard]] ilImage* builtFrom() { return linked_ ? parentImage(0) : nullptr; }
    // Bytes that the pixels take; 0 for an image without sizes or type.
    [[nodiscard]] std::size_t byteSize();

  protected:
    // Starts an operation: brings the image up to date and answers ImageOk if there are pixels to
    // work on. What an earlier operation was refused for is forgotten.
    [[nodiscard]] std::int32_t beginOperation();
    // Keeps a result as the status and answers it.
    std::int32_t finish(std::int32_t result);

    // Replaces the buffer by an owned one of the present sizes, not cleared. False, with no buffer
    // and ImageUnusable, if it can't be had.
    bool allocateBuffer();
    // Takes a buffer made by imageAllocate over.
    void adoptBuffer(std::uint8_t* buffer, std::size_t bytes);
    void releaseBuffer();
    // After the pixels were turned: width and height change places.
    void exchangeSizes();

    std::uint8_t* data_ = nullptr;

  private:
    class WholePage;
    struct Request;

    void initialize(std::int32_t channels);
    void setBuffer(std::uint8_t* buffer, std::size_t ownedBytes);
    void follow(ilImage& parent);
    [[nodiscard]] std::size_t bytesNeeded() const;
    [[nodiscard]] bool hasPixels() const { return data_ != nullptr && bytesNeeded() != 0; }

    std::unique_ptr<WholePage> page_;
    std::size_t ownedBytes_ = 0;
    bool linked_ = false;
    bool readsParent_ = false;
};

}  // namespace brushwork
