// Digests: what a document looks like, in a few digits.
//
// Equal digests mean equal pixels and attributes. They don't depend on how pages are stored, on ids
// or on what was done and undone before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "brushwork/image_ref.h"
#include "brushwork/paint_manager.h"

namespace brushwork::tools {

// A running sum over bytes, 64 bits wide. Not against people who look for collisions.
class DigestSum {
  public:
    void add(const void* bytes, std::size_t count);
    void add(std::int64_t number);
    void add(float number);
    void add(std::string_view text);
    [[nodiscard]] std::string text() const;  // 16 hexadecimal digits

  private:
    std::uint64_t sum_ = 0xcbf29ce484222325u;
};

// Of an image without regard to where its stored box ends; "-" without an image.
[[nodiscard]] std::string digestOf(const ImageRef& image);

// Of the flat picture of a canvas, in front or not; "-" without one.
[[nodiscard]] std::string digestOfPicture(PaintManager& paint, std::int32_t canvas);

struct LayerDigest {
    std::int32_t id = -1;
    std::int32_t depth = 0;  // of groups around it
    std::string name;        // as the document has it
    std::string digest;      // pixels, stencil, place and attributes
};

struct DocumentDigest {
    std::vector<LayerDigest> layers;  // from the bottom up, groups after their members
    std::string selection;
    std::string display;   // what the canvas shows
    std::string document;  // size, layers and their order, selection, the flat picture
};

// Of the current canvas; composes what is dirty. Empty without one.
[[nodiscard]] DocumentDigest digestDocument(PaintManager& paint);

}  // namespace brushwork::tools
