// ImageFileParams: what a caller says and hears about a picture file; head of the request record.
#pragma once

#include <cstdint>

namespace brushwork {

// Values of resolutionUnit. Any other value counts as None.
enum ResolutionUnit : std::int32_t {
    NoResolution = 0,
    DotsPerInch = 2,
    DotsPerCentimetre = 3,
};

// A plain record of 40 bytes, stored as it lies in memory, little-endian.
struct ImageFileParams {
    std::int32_t width = 0;     // pixels
    std::int32_t height = 0;    // pixels
    std::int32_t channels = 0;  // bytes a pixel of the pixel file
    std::uint8_t hasQuality = 0;
    std::uint8_t padding[3] = {};
    std::int32_t quality = 0;  // 0 to 100, read only if hasQuality isn't 0
    std::int32_t resolutionUnit = NoResolution;
    double xResolution = 0.0;
    double yResolution = 0.0;
};

static_assert(sizeof(ImageFileParams) == 40);

}  // namespace brushwork
