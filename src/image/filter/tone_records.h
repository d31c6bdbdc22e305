// Hue, saturation and value of pixels, kept as records beside them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brushwork {

inline constexpr std::size_t toneRecordFloats = 4;  // hue, saturation, value, 0

// Some rows of pixels beside the records of their hue, saturation and value.
struct ToneBlock {
    std::uint32_t* pixels = nullptr;
    std::size_t pixelStride = 0;  // pixels from row to row
    const float* records = nullptr;
    std::size_t recordStride = 0;  // floats from row to row
    std::size_t width = 0, rows = 0;
};

// Records of `count` premultiplied pixels, one behind the other: HSV of the straight colour, each
// number within its bounds. A transparent pixel's are 0.
void toneRecords(const std::uint32_t* pixels, std::size_t count, float* records);
void toneRecordsScalar(const std::uint32_t* pixels, std::size_t count, float* records);
void toneRecordsSse2(const std::uint32_t* pixels, std::size_t count, float* records);
void toneRecordsAvx2(const std::uint32_t* pixels, std::size_t count, float* records);

}  // namespace brushwork
