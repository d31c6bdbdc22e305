// Attributes of layers and of the canvas; only what they feed is composed again.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

void setVisible(StackParts& stack, std::int32_t id, bool visible, std::int32_t arg = 1);
void setOpacity(StackParts& stack, std::int32_t id, float opacity);
void setBlendMode(StackParts& stack, std::int32_t id, std::int32_t mode);
void setLocked(StackParts& stack, std::int32_t id, bool locked);
void setLabelColor(StackParts& stack, std::int32_t id, std::uint32_t label);
void setEnabled(StackParts& stack, std::int32_t id, bool enabled, std::int32_t arg = 1);
void setStencilActive(StackParts& stack, std::int32_t id, bool active);
void setName(StackParts& stack, std::int32_t id, const znString::IString& name);
// Clamped so that the layer keeps touching the canvas unless `unrestricted`.
void setPosition(StackParts& stack, std::int32_t id, float x, float y, bool presentIt,
                 bool unrestricted);
void setBackground(StackParts& stack, const LayerColor& color);
void setMaskColor(StackParts& stack, const LayerColor& color);
void setMaskOpacity(StackParts& stack, float opacity);
// What changes of an attribute end with.
void attributeChanged(StackParts& stack, Layer& layer);
// The canvas origin into every layer's offset.
void absorbOrigin(StackParts& stack);

struct LayerStateRecord {
    bool isGroup = false, isText = false, visible = false, locked = false, blendFlag = false;
    std::int32_t blendMode = 0;
};
[[nodiscard]] bool layerState(const StackParts& stack, std::int32_t id, LayerStateRecord& state);

}  // namespace brushwork::stack
