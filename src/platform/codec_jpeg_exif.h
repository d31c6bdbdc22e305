// The resolution that a camera wrote into a JPEG file's Exif segment.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace brushwork::platform {

struct ExifResolution {
    float x = 0;  // dots per inch, both above 0
    float y = 0;
};

// `segment` is the content of an APP1 segment behind its length: "Exif", two zero bytes, and a
// small TIFF file. Nothing if it isn't that or doesn't tell both resolutions in a known unit.
[[nodiscard]] std::optional<ExifResolution> exifResolution(std::span<const std::uint8_t> segment);

}  // namespace brushwork::platform
