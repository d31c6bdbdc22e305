// Brushes as small files: what a brush is, in plain words.
//
//     {"brush": 1, "title": "Soft round", "radius": [2, 30], "opacity": [0.1, 0.8], "hardness":
//     0.2}
//
// docs/journal.md tells of every field; journals take the same ones.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "brushwork/paint_manager.h"
#include "tools/operation.h"

namespace brushwork::tools {

inline constexpr std::int32_t brushFileVersion = 1;

struct BrushPreset {
    std::string title;
    BrushParameters brush = BrushParameters::defaults();
    StrokeParameters stroke;
    std::int32_t mode = 0;  // BlendModeId of its strokes over the layer
    float strokeOpacity = 1.0f;
    ImageRef tip;  // none: a round one
    Ref<BrushTextureParameters> texture;
    std::optional<std::array<float, 3>> colorJitter;  // hue, saturation, value in percent

    // All of it becomes the current brush; the colour stays.
    void applyTo(PaintManager& paint) const;
    void scaleBy(float factor);
};

// The fields of a brush, for the checks of files and journals.
[[nodiscard]] const std::vector<FieldRule>& brushFields();

// What the fields say, over what the preset was. `folder` is where files of tips and textures are
// looked for. A message if one of them can't be read.
[[nodiscard]] std::optional<std::string> changeBrush(const Operation& fields,
                                                     const std::filesystem::path& folder,
                                                     BrushPreset& preset);

// A message with place and cause on failure.
[[nodiscard]] std::optional<std::string> readBrushFile(const std::filesystem::path& path,
                                                       BrushPreset& preset);

// Where the brushes that ship with the program stand; empty if there are none.
[[nodiscard]] std::filesystem::path brushFolder();

// A file as it is named, or a brush that ships with the program by its name alone.
[[nodiscard]] std::optional<std::string> findBrush(const std::string& nameOrPath,
                                                   const std::filesystem::path& folder,
                                                   BrushPreset& preset);

struct ShippedBrush {
    std::string name;
    std::filesystem::path path;
};
[[nodiscard]] std::vector<ShippedBrush> shippedBrushes();  // by name

}  // namespace brushwork::tools
