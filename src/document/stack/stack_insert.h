// Layers and groups into the list.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

struct NewLayer {
    ilImage* color = nullptr;  // copied; null: blank
    ilImage* stencil = nullptr;
    LayerRole role = LayerRole::Paint;
    bool shape = false;
    std::int32_t shapeKind = 0;
    bool makeActive = true;
    std::int32_t at = activeOne;  // above the layer of that index, members counted; 0: the bottom
    LayerGroup* group = nullptr;  // `at` counts its own members; what is none means its top
    bool render = true;
    std::int32_t x = 0, y = 0;
    bool clip = false;  // trim the pixels to the canvas
};
// The new layer's id; -1: refused.
std::int32_t addLayer(StackParts& stack, const NewLayer& layer);
std::int32_t addGroup(StackParts& stack, const znString::IString& name, std::int32_t at,
                      bool makeActive);
// The list primitive, `at` and `group` as in NewLayer; beyond the count the layer goes to the
// bottom. `belowMatching`: a layer of 4 channels goes past masks and stencils.
void insertLayer(StackParts& stack, Layer& layer, bool belowMatching, std::int32_t at,
                 LayerGroup* group, bool inherit);
// Directly above another layer (null: the bottom of the list `group`, or of the top level).
void insertAbove(StackParts& stack, Layer& layer, Layer* below, LayerGroup* group);
// A member hides and locks with its group, and bears its label.
void inheritState(Layer& layer, const LayerGroup& group);
// Out of the list; the caller holds it.
void unlinkLayer(StackParts& stack, Layer& layer);

}  // namespace brushwork::stack
