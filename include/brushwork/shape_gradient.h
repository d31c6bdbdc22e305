// ShapeGradient: a gradient that a shape is filled or stroked with.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace brushwork {

struct ShapeGradient {
    enum class Form : std::int32_t {
        Linear,  // from start to end
        Radial,  // from the start outward, to the end's distance
    };
    struct Stop {
        float place = 0.0f;            // 0..1
        std::array<float, 4> color{};  // red, green, blue, alpha, 0..1, not premultiplied
    };

    Form form = Form::Linear;
    float startX = 0.0f, startY = 0.0f;  // layer pixels
    float endX = 0.0f, endY = 0.0f;
    bool dither = false;  // noise in place of steps between the colours
    std::vector<Stop> stops;
};

}  // namespace brushwork
