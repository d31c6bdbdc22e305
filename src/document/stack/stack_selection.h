// The selection layer: adding, taking away, replacing, asking.
#pragma once

#include "document/stack/stack_parts.h"

namespace brushwork::stack {

// A new layer for it with the stack's colour and opacity.
void makeSelectionLayer(StackParts& stack);
void resetSelection(StackParts& stack);
void selectAll(StackParts& stack, const ilTile& box);
void selectImage(StackParts& stack, ilImage& image);
void clearSelection(StackParts& stack);
void invertSelection(StackParts& stack);
void addRectToSelection(StackParts& stack, const ilTile& box);
void addImageToSelection(StackParts& stack, ilImage& image, float x, float y);
void subtractRectFromSelection(StackParts& stack, const ilTile& box);
void subtractImageFromSelection(StackParts& stack, ilImage& image, float x, float y);
void setSelectionImage(StackParts& stack, ilImage* image, float x, float y);
void selectionBounds(StackParts& stack, bool& empty, ilTile& box);
void makeSelectionActive(StackParts& stack);
void moveSelection(StackParts& stack, float dx, float dy);
void setSelectionColor(StackParts& stack, const LayerColor& color, float opacity);
// What every change of the selection ends with.
void selectionChanged(StackParts& stack);

}  // namespace brushwork::stack
