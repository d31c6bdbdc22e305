// AttributeFamily: attributes of layers and of the canvas.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/export.h"
#include "brushwork/i_string.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API AttributeFamily {
  public:
    void setVisible(std::int32_t id, bool visible);
    void setOpacity(std::int32_t id, float opacity);  // 0 to 1
    // A BlendModeId, or 0xffff (pass-through) for a group.
    void setBlendMode(std::int32_t id, std::int32_t mode);
    void setLocked(std::int32_t id, bool locked);
    void setName(std::int32_t id, const znString::IString& name);
    // Kept within touch of the canvas unless `unrestricted`.
    void setPosition(std::int32_t id, float x, float y, bool record = false,
                     bool unrestricted = false);
    void setLabelColor(std::int32_t id, std::uint32_t label);  // 0 to 7
    void setEnabled(std::int32_t id, bool enabled);            // the effect of a mask
    void setStencilActive(std::int32_t id, bool active);
    void setLockAlpha(bool lock);  // painting keeps the active layer's alpha
    void setExpanded(std::int32_t id, bool expanded);
    // Colours are red, green, blue, alpha, 0 to 1.
    void setBackground(const std::array<float, 4>& color, std::int32_t canvas = -2);
    void setMaskColor(const std::array<float, 4>& color);
    void setMaskOpacity(float opacity);
    void setThumbnailSize(std::int32_t id, std::int32_t width, std::int32_t height);

  protected:
    explicit AttributeFamily(FacadeState& state) : state_(state) {}
    AttributeFamily(const AttributeFamily&) = delete;
    AttributeFamily& operator=(const AttributeFamily&) = delete;
    ~AttributeFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
