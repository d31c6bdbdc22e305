// AttributeFamily: attributes of layers and of the canvas.
//
// Layers are named by id, in whatever canvas; -2 is the active one, canvas -2 the current one. An
// unknown id changes nothing. Unless an operation says otherwise it makes no undo record, and what
// it changes is shown anew.
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
    void setOpacity(std::int32_t id, float opacity);  // 0 to 1, else the nearer of them; NaN is 0
    // A BlendModeId, or 0xffff (pass-through) for a group.
    void setBlendMode(std::int32_t id, std::int32_t mode);
    // Locked layers are painted on no more.
    void setLocked(std::int32_t id, bool locked);
    // Any name, be it another layer's.
    void setName(std::int32_t id, const znString::IString& name);
    // Of the layer's corner, in document pixels. Kept within touch of the canvas unless
    // `unrestricted`; places that are no numbers or out of reach change nothing.
    void setPosition(std::int32_t id, float x, float y, bool record = false,
                     bool unrestricted = false);
    void setLabelColor(std::int32_t id, std::uint32_t label);  // 0 to 7
    void setEnabled(std::int32_t id, bool enabled);            // the effect of a mask
    void setStencilActive(std::int32_t id, bool active);       // the layer's own stencil
    void setLockAlpha(bool lock);                      // painting keeps the active layer's alpha
    void setExpanded(std::int32_t id, bool expanded);  // of a group, for the host's list
    // Colours are red, green, blue, alpha, 0 to 1.
    void setBackground(const std::array<float, 4>& color, std::int32_t canvas = -2);
    // The tint by which masks show, and how much of it, 0 to 1.
    void setMaskColor(const std::array<float, 4>& color);
    void setMaskOpacity(float opacity);
    // Of what thumbnail() answers from then on, in pixels.
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
