// FloodFillWave: a run of pixels that moves as a front.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace brushwork {

// The run starts at the origin and goes along the perpendicular (dy, -dx); its elements lie one
// step ahead of it, in the direction (dx, dy), one of the four units. What the wave leaves on its
// two sides as it advances collects in side waves, which don't move before they are let go.
struct FloodFillWave {
    FloodFillWave(std::int32_t startX, std::int32_t startY, std::int32_t count, std::int32_t stepX,
                  std::int32_t stepY)
        : x(startX), y(startY), length(count), dx(stepX), dy(stepY) {}

    // Element i, 0 to length - 1; also of the places beyond both ends.
    [[nodiscard]] std::int32_t elementX(std::int32_t i) const { return x + dy * i + dx; }
    [[nodiscard]] std::int32_t elementY(std::int32_t i) const { return y - dx * i + dy; }

    void dropFirst() {
        x += dy;
        y -= dx;
        --length;
    }
    // One more element in front of the first.
    void growFirst() {
        x -= dy;
        y += dx;
        ++length;
    }
    // Moves one step; each side wave gets the place that the wave leaves on its side. Without
    // memory for a side wave, that side isn't filled.
    void advance();

    std::int32_t x, y;
    std::int32_t length;
    std::int32_t dx, dy;
    std::unique_ptr<FloodFillWave> leftWave;
    std::unique_ptr<FloodFillWave> rightWave;
};

// A stack of waves.
using FloodFillWaves = std::vector<std::unique_ptr<FloodFillWave>>;

// Puts a wave on the stack. Null does nothing; without memory the wave is lost.
void pushWave(FloodFillWaves& waves, std::unique_ptr<FloodFillWave> wave);
// The same with one of the `spare` waves, which have no side waves, if there is any.
void pushWave(FloodFillWaves& waves, FloodFillWaves& spare, FloodFillWave start);
// Empties the stack, and keeps some of what has no side waves for later.
void dropWaves(FloodFillWaves& waves, FloodFillWaves& spare);

}  // namespace brushwork
