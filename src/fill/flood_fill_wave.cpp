#include "fill/flood_fill_wave.h"

#include <new>
#include <utility>

namespace brushwork {

void FloodFillWave::advance() {
    const std::int32_t headX = elementX(0);
    const std::int32_t headY = elementY(0);
    if (leftWave)
        ++leftWave->length;
    else
        leftWave.reset(new (std::nothrow) FloodFillWave(headX, headY, 1, -dy, dx));
    if (rightWave)
        rightWave->growFirst();
    else
        rightWave.reset(new (std::nothrow)
                            FloodFillWave(elementX(length - 1), elementY(length - 1), 1, dy, -dx));
    x += dx;
    y += dy;
}

void pushWave(FloodFillWaves& waves, std::unique_ptr<FloodFillWave> wave) {
    if (!wave) return;
    try {
        waves.push_back(std::move(wave));
    } catch (const std::bad_alloc&) {
        // That branch of the flood ends here.
    }
}

void pushWave(FloodFillWaves& waves, FloodFillWaves& spare, FloodFillWave start) {
    if (spare.empty()) {
        pushWave(waves, std::unique_ptr<FloodFillWave>(new (std::nothrow)
                                                           FloodFillWave(std::move(start))));
        return;
    }
    std::unique_ptr<FloodFillWave> wave = std::move(spare.back());
    spare.pop_back();
    *wave = std::move(start);
    pushWave(waves, std::move(wave));
}

void dropWaves(FloodFillWaves& waves, FloodFillWaves& spare) {
    constexpr std::size_t mostSpare = 64;
    while (!waves.empty()) {
        if (spare.size() < mostSpare && !waves.back()->leftWave && !waves.back()->rightWave)
            pushWave(spare, std::move(waves.back()));
        waves.pop_back();
    }
}

}  // namespace brushwork
