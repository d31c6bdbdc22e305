// LayerFamily: layers into and out of a canvas.
//
// Layers are named by id; -2 means the active one. Operations that fail answer -1 or false and
// change nothing.
#pragma once

#include <cstdint>
#include <span>

#include "brushwork/export.h"
#include "brushwork/i_string.h"
#include "brushwork/image_ref.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API LayerFamily {
  public:
    // Role: 0 paint, 1 mask, 2 stencil. Above the layer of that index (members of groups counted;
    // 0 is the bottom, -2 above the active one). The id.
    std::int32_t newLayer(std::int32_t at = -2, std::int32_t role = 0, std::int32_t x = 0,
                          std::int32_t y = 0, bool makeActive = true, bool record = true);
    // A copy of the image; one channel makes a mask.
    std::int32_t newImageLayer(const ImageRef& image, std::int32_t x, std::int32_t y);
    std::int32_t newMaskLayer(bool stencil = false);
    // Kind: 0 paint, 1 mask, 2 stencil, 3 warp.
    std::int32_t newShapeLayer(std::int32_t at, std::int32_t kind);
    // A group, empty, at an index as newLayer has it.
    std::int32_t newGroup(const znString::IString& name, std::int32_t at = -2);
    bool deleteLayer(std::int32_t id);
    bool deleteLayers(std::span<const std::int32_t> ids, bool dryRun = false);
    // All layers of a canvas; one blank layer stays.
    bool clearLayers(std::int32_t canvas = -2);
    bool flattenAll(std::int32_t canvas = -2, bool visibleOnly = false);
    // `dryRun`, here and below: whether it would be done; nothing changes.
    bool mergeVisible(bool dryRun = false);
    // Into the layer below it in its list.
    bool mergeDown(std::int32_t id = -2);
    bool flattenGroup(std::int32_t id, bool dryRun = false);
    // What tools work on. Makes no undo record.
    bool setActiveLayer(std::int32_t id);
    // The new active id.
    std::int32_t nextUp();
    std::int32_t nextDown();

  protected:
    explicit LayerFamily(FacadeState& state) : state_(state) {}
    LayerFamily(const LayerFamily&) = delete;
    LayerFamily& operator=(const LayerFamily&) = delete;
    ~LayerFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
