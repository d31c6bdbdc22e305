// Selecting by colour and by polygon.
#pragma once

#include <span>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

struct WandParams {
    bool doodle = false;  // the fill that follows ramps
};
// At a place of the view. False: nothing was selected from.
bool magicWand(StackParts& stack, float x, float y, float tolerance, const WandParams& params,
               bool replace, std::int32_t layerId);
void polygonSelect(StackParts& stack, std::span<const ViewPoint> points);

}  // namespace brushwork::stack
