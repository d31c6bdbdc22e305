// The inner loops of the fast blur in their vector forms. They only see lines that are padded for
// them; fast_blur.cpp prepares those.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/filter/blur_windows.h"

namespace brushwork {

// Two lines of four-byte pixels.
struct BlurLines {
    // Pixel 0 of either line. Zeros stand before it, widest + 1 pixels, and behind the line's last
    // pixel, widest + 4 pixels.
    const std::uint8_t* in[2] = {};
    // Room for the length rounded up to 4 pixels; what is written behind the length is arbitrary.
    std::uint8_t* out[2] = {};
    const BlurWindows* windows = nullptr;
    const float* reciprocals = nullptr;  // of each centre; readable up to the rounded length
};

// One step down of `lanes` neighbouring columns of bytes.
struct BlurColumns {
    // The rows that enter and leave the four windows, a row of zeros where that lies outside.
    // Readable up to `lanes` rounded up to 32.
    const std::uint8_t* lead[4] = {};
    const std::uint8_t* trail[4] = {};
    // Running sums, `lanes` of them rounded up to 32, in an order of the form's own.
    std::int32_t* sums = nullptr;
    std::uint8_t* out = nullptr;  // `lanes` bytes; null only moves the sums on
    float reciprocal = 0.0f;
    std::size_t lanes = 0;
};

struct BlurSteps {
    void (*lines)(const BlurLines& job);
    void (*columns)(const BlurColumns& job);
};

extern const BlurSteps blurStepsSse2;
extern const BlurSteps blurStepsAvx2;

}  // namespace brushwork
