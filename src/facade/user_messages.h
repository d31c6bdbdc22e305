// Texts that a person reads. Nothing else goes to showMessage and reportError.
#pragma once

namespace brushwork::messages {

inline constexpr const char* fillWithoutLayer =
    "No image layer present. Please create a new Image Layer before using Floodfill.";
inline constexpr const char* wandWithoutLayer =
    "There is no image layer in the window. This happens when magic wand is done before an image "
    "layer has been created.";
inline constexpr const char* warpNeedsPaint = "Cannot warp a shape or mask layer.\n";
inline constexpr const char* maskIntoShape = "Cannot create shape mask into a shape layer.\n";
inline constexpr const char* maskIntoStencil =
    "Cannot create shape mask into a shape stencil layer.\n";
inline constexpr const char* maskIntoWarp = "Cannot create shape mask into a warp layer.\n";
inline constexpr const char* stencilIntoShape = "Cannot create shape stencil into a shape layer.\n";
inline constexpr const char* stencilIntoMask =
    "Cannot create shape stencil into a shape mask layer.\n";
inline constexpr const char* stencilIntoWarp = "Cannot create shape stencil into a warp layer.\n";
inline constexpr int errorStyle = 0x10;

}  // namespace brushwork::messages
