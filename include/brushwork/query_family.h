// QueryFamily: questions about canvases and layers.
//
// Layers by id, in whatever canvas; -2 is the active one, canvas -2 the current one. Indices count
// from 1 at the bottom; with `members` a group's members count, too. Answers for what is not there
// are 0, -1, false or empty. Nothing here changes the document.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/export.h"
#include "brushwork/i_string.h"
#include "brushwork/il_tile.h"
#include "brushwork/image_ref.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API QueryFamily {
  public:
    [[nodiscard]] std::int32_t layerCount(bool members = true, std::int32_t canvas = -2) const;
    [[nodiscard]] std::int32_t layerIdAt(std::int32_t index, bool members = true,
                                         std::int32_t canvas = -2) const;
    [[nodiscard]] std::int32_t layerIndexOf(std::int32_t id, bool members = true) const;
    [[nodiscard]] std::int32_t activeLayerId(std::int32_t canvas = -2) const;
    [[nodiscard]] std::int32_t activeLayerIndex(bool members = true,
                                                std::int32_t canvas = -2) const;
    [[nodiscard]] std::int32_t selectionLayerId(std::int32_t canvas = -2) const;
    // The canvas that holds the layer.
    [[nodiscard]] std::int32_t canvasOfLayer(std::int32_t id) const;
    [[nodiscard]] znString::IString layerName(std::int32_t id) const;
    // Its own switch; in the tree those of the groups around it, too.
    [[nodiscard]] bool isVisible(std::int32_t id) const;
    [[nodiscard]] bool isVisibleInTree(std::int32_t id) const;
    [[nodiscard]] bool isLocked(std::int32_t id) const;
    [[nodiscard]] bool isEnabled(std::int32_t id) const;
    [[nodiscard]] bool isGroup(std::int32_t id) const;
    [[nodiscard]] bool isMask(std::int32_t id) const;
    [[nodiscard]] bool isStencil(std::int32_t id) const;
    [[nodiscard]] bool isShapeLayer(std::int32_t id) const;
    [[nodiscard]] bool isText(std::int32_t id) const;
    [[nodiscard]] bool isExpanded(std::int32_t id) const;
    [[nodiscard]] float opacity(std::int32_t id) const;  // 0 to 1
    // A BlendModeId, 0xffff for a pass-through group.
    [[nodiscard]] std::int32_t blendMode(std::int32_t id) const;
    [[nodiscard]] std::uint32_t labelColor(std::int32_t id) const;
    // Document pixels. False, and nothing written, for an unknown layer.
    [[nodiscard]] bool position(std::int32_t id, float* x, float* y) const;
    [[nodiscard]] bool pivot(std::int32_t id, float* x, float* y) const;
    // Document pixels; false for an empty layer.
    [[nodiscard]] bool layerBounds(std::int32_t id, ilTile& box) const;
    // The id of the group around it, -1 at the top level.
    [[nodiscard]] std::int32_t groupOf(std::int32_t id) const;
    [[nodiscard]] std::int32_t groupMemberCount(std::int32_t id) const;
    [[nodiscard]] std::int32_t groupChild(std::int32_t id, std::int32_t index) const;
    // How many groups are around the layer; how many a group holds one in another, itself not.
    [[nodiscard]] std::int32_t groupDepth(std::int32_t id) const;
    [[nodiscard]] std::int32_t maxGroupDepth(std::int32_t id) const;
    [[nodiscard]] bool canMergeDown(std::int32_t id) const;
    [[nodiscard]] bool isNameUnique(const znString::IString& name) const;
    // The layer's own image, drawn anew by the next call; blank of a mask.
    [[nodiscard]] ImageRef thumbnail(std::int32_t id);
    // The visible layer at a document place whose alpha reaches the threshold (0 to 1), or -1.
    [[nodiscard]] std::int32_t pickLayer(float x, float y, float threshold = 0.5f) const;
    [[nodiscard]] std::array<float, 4> background(std::int32_t canvas = -2) const;
    // Another number after every change of what is shown.
    [[nodiscard]] std::int32_t generation(std::int32_t canvas = -2) const;
    [[nodiscard]] bool inTransform() const;
    [[nodiscard]] bool isFloodFilling() const;

  protected:
    explicit QueryFamily(FacadeState& state) : state_(state) {}
    QueryFamily(const QueryFamily&) = delete;
    QueryFamily& operator=(const QueryFamily&) = delete;
    ~QueryFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
