#include "fill/wave_loop.h"

#include <cstring>
#include <new>
#include <utility>

#include "image/cache/smart_page.h"

namespace brushwork {

PageBorderBitMask WaveLoop::run(FloodFillWaves& waves) {
    waves_ = &waves;
    left_ = {};
    while (!waves.empty()) {
        const std::unique_ptr<FloodFillWave> wave = std::move(waves.back());
        waves.pop_back();
        runWave(*wave);
    }
    return left_;
}

void WaveLoop::runWave(FloodFillWave& wave) {
    while (wave.length > 0) {
        for (std::int32_t i = 0; i < wave.length;) {
            const std::int32_t x = wave.elementX(i);
            const std::int32_t y = wave.elementY(i);
            if (leaves(x, y)) {
                flush(wave.leftWave);
                wave.dropFirst();
                // A wave that has left whole leaves what lies on both its sides to be filled.
                if (wave.length == 0) flush(wave.rightWave);
            } else if (isInside(x, y) && !stops(x, y)) {
                ++i;
            } else {
                cut(wave, i);
            }
        }
        if (wave.length > 0) wave.advance();
    }
}

bool WaveLoop::leaves(std::int32_t x, std::int32_t y) {
    if (x < 0)
        left_.left.set(y);
    else if (x >= pageSide)
        left_.right.set(y);
    else if (y < 0)
        left_.above.set(x);
    else if (y >= pageSide)
        left_.below.set(x);
    else
        return false;
    return true;
}

bool WaveLoop::isInside(std::int32_t x, std::int32_t y) const {
    const ilTile& box = page_.inside;
    return x >= box.x && y >= box.y && x < box.endX() && y < box.endY();
}

std::uint8_t WaveLoop::distanceAt(std::int32_t x, std::int32_t y) const {
    std::uint32_t pixel = page_.solid;
    if (page_.pixels) {
        const auto index = static_cast<std::size_t>(y * pageSide + x);
        if (page_.target.isGrey)
            pixel = page_.pixels[index];
        else
            std::memcpy(&pixel, page_.pixels + 4 * index, sizeof pixel);
    }
    return colorDistance(pixel, page_.target);
}

std::uint8_t& WaveLoop::coverageAt(std::int32_t x, std::int32_t y) const {
    return page_.coverage[y * pageSide + x];
}

// Covers the pixel, and answers whether waves end at it.
bool WaveLoop::stops(std::int32_t x, std::int32_t y) {
    const std::uint8_t distance = distanceAt(x, y);
    const std::uint8_t wanted = page_.table[distance];
    std::uint8_t& coverage = coverageAt(x, y);
    const bool open = page_.smoothEdges ? wanted > coverage : coverage < 255;
    if (wanted > coverage) coverage = wanted;
    return !open || distance >= page_.table.stop();
}

// Element i is lost: the wave goes on without it, on one side of it or on both.
void WaveLoop::cut(FloodFillWave& wave, std::int32_t i) {
    const bool isFirst = i == 0;
    const bool isLast = i == wave.length - 1;
    if (isFirst) {
        flush(wave.leftWave);
        coverHalf(wave, -1);
    }
    if (isLast) {
        flush(wave.rightWave);
        coverHalf(wave, wave.length);
    }
    if (isLast) {
        --wave.length;
    } else if (isFirst) {
        wave.dropFirst();
    } else {
        std::unique_ptr<FloodFillWave> rest(
            new (std::nothrow) FloodFillWave(wave.x + wave.dy * (i + 1), wave.y - wave.dx * (i + 1),
                                             wave.length - i - 1, wave.dx, wave.dy));
        if (rest) rest->rightWave = std::move(wave.rightWave);
        pushWave(*waves_, std::move(rest));
        wave.length = i;
    }
}

void WaveLoop::coverHalf(const FloodFillWave& wave, std::int32_t i) {
    const std::int32_t x = wave.elementX(i);
    const std::int32_t y = wave.elementY(i);
    if (!page_.smoothEdges || !isInside(x, y)) return;
    const auto half = static_cast<std::uint8_t>(page_.table[distanceAt(x, y)] / 2);
    std::uint8_t& coverage = coverageAt(x, y);
    if (half > coverage) coverage = half;
}

void WaveLoop::flush(std::unique_ptr<FloodFillWave>& side) {
    pushWave(*waves_, std::move(side));
}

}  // namespace brushwork
