// ImageRef: a host's handle on an image of the engine.
//
//     ImageRef picture = ImageRef::make(4);
//     picture.write(flatTile(0, 0, width, height), pixels);
//     manager.fillWithImage(picture);
//
// A handle is a value; copies name the same image, which lives as long as one of them or a document
// holds it. Pixels are bytes: 1 a pixel, or 4 (red, green, blue, alpha, premultiplied), rows
// without padding, row 0 at the bottom. Document's thread.
#pragma once

#include <cstdint>
#include <memory>

#include "brushwork/export.h"
#include "brushwork/il_tile.h"

namespace brushwork {

class ilImage;

class BRUSHWORK_API ImageRef {
  public:
    // No image.
    ImageRef();
    // A sparse image without bounds, blank. Other channel counts than 1 and 4: no image.
    [[nodiscard]] static ImageRef make(std::int32_t channels);
    // Over the caller's pixels, which must outlive every handle and document that holds it.
    [[nodiscard]] static ImageRef wrap(void* pixels, std::int32_t width, std::int32_t height,
                                       std::int32_t channels);
    // For the engine.
    explicit ImageRef(ilImage* image);
    ImageRef(const ImageRef& other);
    ImageRef(ImageRef&& other) noexcept;
    ImageRef& operator=(const ImageRef& other);
    ImageRef& operator=(ImageRef&& other) noexcept;
    ~ImageRef();

    [[nodiscard]] explicit operator bool() const { return image_ != nullptr; }
    // Borrowed; for the engine.
    [[nodiscard]] ilImage* image() const { return image_; }

    [[nodiscard]] std::int32_t channels() const;
    // The box that holds everything that isn't blank. Empty without an image.
    [[nodiscard]] ilTile bounds() const;
    // A box of pixels to and from a buffer of that box's size. False: no image, no memory, or an
    // empty box; what lies beyond a wrapped picture reads as 0 and is not written.
    bool read(const ilTile& box, void* pixels) const;
    bool write(const ilTile& box, const void* pixels);
    // One value for the box; of one channel the lowest byte counts.
    bool fill(const ilTile& box, std::uint32_t pixel);
    // A sparse copy that shares all pages until either is written to.
    [[nodiscard]] ImageRef copy() const;

  private:
    ilImage* image_ = nullptr;  // counted
};

}  // namespace brushwork
