// What a smart image ought to hold, kept in the plainest way: each image is a small grid of pages
// that are whole arrays of pixels. No cache, no swap file, no solid pages, no states.
//
// The rules that it knows beside the pixels are those that a caller can see: an image follows its
// parent where it hasn't looked yet and keeps what it has looked at, its bounds growing by what the
// parent shows there; beyond its bounds there is fill; what a smaller box cuts off is fill for
// good.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "brushwork/il_tile.h"

namespace brushwork::test {

struct ModelPage {
    std::vector<std::uint8_t> bytes;
};
using ModelPageRef = std::shared_ptr<ModelPage>;

// Pixels with sizes, as a parent or a partner of copies.
struct ModelMemory {
    std::int32_t width = 0, height = 0, channels = 1;
    std::uint32_t fill = 0;
    std::vector<std::uint8_t> bytes;

    [[nodiscard]] std::uint8_t value(std::int32_t x, std::int32_t y, std::int32_t c) const;
    void setValue(std::int32_t x, std::int32_t y, std::int32_t c, std::uint8_t value);
};

// The place of the grid: `side` pages on each axis from (x, y), multiples of 128. All boxes that
// are written lie in it.
struct ModelWindow {
    std::int32_t x = 0, y = 0, side = 5;
};

class ModelImage {
  public:
    ModelImage(const ModelWindow& window, std::int32_t channels, std::uint32_t fill);
    // A child.
    explicit ModelImage(const std::shared_ptr<ModelImage>& parent);
    ModelImage(const ModelWindow& window, const std::shared_ptr<ModelMemory>& parent);

    [[nodiscard]] std::int32_t channels() const { return channels_; }
    [[nodiscard]] std::uint32_t fill() const { return fill_; }
    [[nodiscard]] const ilTile& bounds() const { return bounds_; }
    [[nodiscard]] const std::shared_ptr<ModelImage>& parent() const { return parent_; }
    [[nodiscard]] const std::shared_ptr<ModelMemory>& memoryParent() const { return memory_; }
    [[nodiscard]] bool descendsFrom(const ModelImage& image) const;

    // Reading looks pages up.
    [[nodiscard]] std::uint8_t value(std::int32_t x, std::int32_t y, std::int32_t c);
    [[nodiscard]] std::uint32_t pixel(std::int32_t x, std::int32_t y);
    // Rows of the box, cut to nothing.
    void read(const ilTile& box, std::uint8_t* bytes);
    void lookUp(const ilTile& box, bool create = false);

    void setPixel(std::int32_t x, std::int32_t y, std::uint32_t value);
    void write(const ilTile& box, const std::uint8_t* bytes);
    // Which channels, as values from a function of place and channel; -1 leaves one alone.
    template <class Function>
    void writeValues(const ilTile& box, Function&& function);
    void fillBox(const ilTile& box, std::uint32_t value, const ilTile* keepOut);
    void fillChannels(const ilTile& box, std::uint32_t value, std::int32_t first,
                      std::int32_t count, const ilTile* keepOut);
    void copyIn(const ilTile& box, ModelImage& source, std::int32_t dx, std::int32_t dy);
    void lockPage(std::int32_t x, std::int32_t y, bool write);
    // Of the page that holds the place, wherever the bounds are.
    [[nodiscard]] const std::vector<std::uint8_t>& pageBytes(std::int32_t x, std::int32_t y) {
        return page(x & ~(side - 1), y & ~(side - 1), true)->bytes;
    }
    void setFill(std::uint32_t value);
    void materialize(const ilTile* box) { lookUp(box ? clipped(*box) : bounds_, true); }
    void push();
    bool collapse();
    void setSource(const std::shared_ptr<ModelImage>& parent,
                   const std::shared_ptr<ModelMemory>& memory);
    [[nodiscard]] std::shared_ptr<ModelImage> clone();

    void setBounds(const ilTile& box, bool forceTrim);
    void setFixedBounds(const ilTile& box);
    [[nodiscard]] bool hasFixedBounds() const { return hasFixed_; }
    [[nodiscard]] const ilTile& fixedBounds() const { return fixed_; }
    void clearFixedBounds() { hasFixed_ = false; }
    void growToPages(std::int32_t margin);
    void shrinkToPixels(bool force);
    void sanitize();
    [[nodiscard]] bool isSolid(const ilTile& box, std::uint32_t& value);
    [[nodiscard]] std::int32_t alphaClass(const ilTile& box);

    // A shrink to pages is due at the next look at the bounds. How far it gets depends on which
    // pages the real image knows as solid: it is told, and false if that can't be.
    [[nodiscard]] bool shrinkIsDue() const { return needsShrink_; }
    void noteShrink() { needsShrink_ = true; }
    [[nodiscard]] bool adoptShrink(const ilTile& real);

    [[nodiscard]] static ilTile clipped(const ilTile& box);
    [[nodiscard]] std::string describe() const;

  private:
    static constexpr std::int32_t side = 128;

    [[nodiscard]] ModelPageRef uniformPage(std::uint32_t value) const;
    [[nodiscard]] ModelPageRef* slot(std::int32_t x, std::int32_t y);
    ModelPageRef page(std::int32_t x, std::int32_t y, bool create);
    ModelPage& ownPage(std::int32_t x, std::int32_t y);
    [[nodiscard]] bool asksParent(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] ModelPageRef parentPage(std::int32_t x, std::int32_t y);
    [[nodiscard]] std::uint8_t* place(ModelPage& page, std::int32_t x, std::int32_t y) const;
    [[nodiscard]] std::uint32_t load(const std::uint8_t* at) const;
    void store(std::uint8_t* at, std::uint32_t value) const;
    [[nodiscard]] bool isFillPart(ModelPage& page, const ilTile& part) const;
    void grow(const ilTile& box);
    void trim(const ilTile& box);
    void cutPage(std::int32_t x, std::int32_t y, const ilTile& box);
    [[nodiscard]] bool passes(const std::uint8_t* at, std::int32_t stride,
                              std::int32_t count) const;
    [[nodiscard]] bool rowIsFill(std::int32_t y, std::int32_t x, std::int32_t endX);
    [[nodiscard]] bool columnIsFill(std::int32_t x, std::int32_t y, std::int32_t endY);
    // Calls visit(x, y) for each page of a box.
    template <class Visit>
    static void eachPage(const ilTile& box, Visit&& visit) {
        if (box.isEmpty()) return;
        for (std::int32_t y = box.y & ~(side - 1); y < box.endY(); y += side)
            for (std::int32_t x = box.x & ~(side - 1); x < box.endX(); x += side) visit(x, y);
    }

    ModelWindow window_;
    std::int32_t channels_;
    std::uint32_t fill_;
    ModelPageRef default_;
    std::vector<ModelPageRef> slots_;
    std::shared_ptr<ModelImage> parent_;
    std::shared_ptr<ModelMemory> memory_;
    ilTile bounds_{0, 0, 0, 0, 0, 1};
    ilTile initial_{0, 0, 0, 0, 0, 1};
    ilTile inherited_;
    ilTile modified_{0, 0, 0, 0, 0, 1};
    ilTile fixed_{0, 0, 0, 0, 0, 1};
    bool hasFixed_ = false;
    bool needsShrink_ = false;
};

template <class Function>
void ModelImage::writeValues(const ilTile& box, Function&& function) {
    const ilTile inside = clipped(box);
    if (inside.isEmpty()) return;
    modified_ = unionOf(modified_, inside);
    lookUp(inside, true);
    eachPage(inside, [&](std::int32_t px, std::int32_t py) {
        ModelPage& own = ownPage(px, py);
        const ilTile part = intersection(flatTile(px, py, side, side), inside);
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            for (std::int32_t x = part.x; x < part.endX(); ++x)
                for (std::int32_t c = 0; c < channels_; ++c) {
                    const int value = function(x, y, c);
                    if (value >= 0) place(own, x, y)[c] = static_cast<std::uint8_t>(value);
                }
    });
    grow(inside);
}

}  // namespace brushwork::test
