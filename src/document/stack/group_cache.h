// GroupCache: composites of runs of layers from the bottom of a stack, by the ids of the layers in
// them and the ground below, so that a change of the active layer need not draw all layers below it
// again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"

namespace brushwork {

class GroupCache {
  public:
    struct Found {
        Ref<ilSmartImage> image;  // null: nothing stored
        std::size_t length = 0;   // ids that are drawn in it
    };
    // The longest stored run on that ground (a pixel) that the list of ids begins with.
    [[nodiscard]] Found find(std::uint32_t ground, std::span<const std::int32_t> ids) const;
    // Shares the image's pages as they are now.
    void store(std::uint32_t ground, std::span<const std::int32_t> ids, ilSmartImage& image);
    // What holds this layer is gone.
    void noteChange(std::int32_t id);
    void clear() { entries_.clear(); }
    [[nodiscard]] std::size_t size() const { return entries_.size(); }

  private:
    static constexpr std::size_t most = 8;  // the oldest goes
    struct Entry {
        std::uint32_t ground = 0;
        std::vector<std::int32_t> ids;
        Ref<ilSmartImage> image;
    };
    std::vector<Entry> entries_;
};

}  // namespace brushwork
