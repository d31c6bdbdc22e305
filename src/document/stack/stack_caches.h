// The composites below and above the active layer.
#pragma once

#include <functional>

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// Told of the composite below, while it is made, each block that is done; in all the whole canvas,
// or nothing of it.
using BelowStep = std::function<void(ilSmartImage& below, const ilTile& block)>;

void rebuildBelow(StackParts& stack, Ref<ilSmartImage>& out, const BelowStep& step = {});
void refreshBelow(StackParts& stack, const BelowStep& step = {});
void rebuildAbove(StackParts& stack, Ref<ilSmartImage>& out, bool withSelection, bool refreshMask);
void refreshAbove(StackParts& stack, bool refreshMask);
// Both, where they are stale; what lies above first.
void freshenCaches(StackParts& stack, const BelowStep& step = {});

// Of the top level: the lowest layer above the active one; null without any.
[[nodiscard]] Layer* firstAbove(const StackParts& stack);
// Whether such a layer shows. Masks show as a tint, unless a selection does instead or what they
// mask is hidden.
[[nodiscard]] bool isDrawnAbove(const StackParts& stack, Layer& layer, bool withSelection);
// Whether the tint of the selection lies over all.
[[nodiscard]] bool showsSelection(const StackParts& stack, bool withSelection);

}  // namespace brushwork::stack
