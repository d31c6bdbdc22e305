#include "image/work/quarter_turns.h"

#include <algorithm>
#include <cstring>

namespace brushwork {
namespace {

// A turn is the exchange of both axes with one of them run backwards. Walking the source's rows, or
// the target's, from the last one on is a negative stride, so that one loop serves both turns.
struct Turn {
    const std::uint8_t* source;
    std::ptrdiff_t sourceRowBytes;
    std::uint8_t* target;
    std::ptrdiff_t targetRowBytes;
    std::int32_t width, height;  // of the source

    [[nodiscard]] TurnBlock at(std::int32_t x, std::int32_t y, std::ptrdiff_t bytes) const {
        return {source + y * sourceRowBytes + x * bytes, sourceRowBytes,
                target + x * targetRowBytes + y * bytes, targetRowBytes};
    }
};

template <std::size_t Bytes>
void turnPixels(const TurnBlock& block, std::int32_t width, std::int32_t height) {
    for (std::int32_t x = 0; x < width; ++x) {
        std::uint8_t* to = block.target + x * block.targetRowBytes;
        const std::uint8_t* from = block.source + x * static_cast<std::ptrdiff_t>(Bytes);
        for (std::int32_t y = 0; y < height; ++y, to += Bytes, from += block.sourceRowBytes)
            std::memcpy(to, from, Bytes);
    }
}

// The picture is walked in tiles whose lines stay in the first cache on both sides.
constexpr std::int32_t tileSide = 32;

template <std::size_t Bytes>
void turnTile(const Turn& turn, std::int32_t x, std::int32_t y, std::int32_t width,
              std::int32_t height) {
    constexpr std::int32_t side = Bytes == 4 ? turnSideFour : turnSideOne;
    const TurnKernel kernel = Bytes == 4 ? turnFourSse2 : turnOneSse2;
    const std::int32_t wholeX = width / side * side;
    const std::int32_t wholeY = height / side * side;
    for (std::int32_t i = 0; i < wholeX; i += side)
        for (std::int32_t j = 0; j < wholeY; j += side) kernel(turn.at(x + i, y + j, Bytes));
    turnPixels<Bytes>(turn.at(x + wholeX, y, Bytes), width - wholeX, height);
    turnPixels<Bytes>(turn.at(x, y + wholeY, Bytes), wholeX, height - wholeY);
}

template <std::size_t Bytes>
void turnAll(const Turn& turn, std::int32_t width, std::int32_t height) {
    if (vectorLevel() == VectorLevel::Scalar) {
        noteKernelForm(VectorLevel::Scalar);
        turnPixels<Bytes>(turn.at(0, 0, Bytes), width, height);
        return;
    }
    for (std::int32_t y = 0; y < height; y += tileSide)
        for (std::int32_t x = 0; x < width; x += tileSide)
            turnTile<Bytes>(turn, x, y, std::min(tileSide, width - x),
                            std::min(tileSide, height - y));
}

template <std::size_t Bytes>
void turnSized(const Turn& turn) {
    // Pages are 128 by 128: with the sizes known, all the tests of the loops fall away.
    if (turn.width == 128 && turn.height == 128)
        turnAll<Bytes>(turn, 128, 128);
    else
        turnAll<Bytes>(turn, turn.width, turn.height);
}

bool isTurnable(std::int32_t width, std::int32_t height, std::int32_t bytes) {
    return width > 0 && height > 0 && (bytes == 1 || bytes == 4);
}

void run(const Turn& turn, std::int32_t bytes) {
    bytes == 4 ? turnSized<4>(turn) : turnSized<1>(turn);
}

template <class Pixel>
void mirrorRows(std::uint8_t* pixels, std::int32_t width, std::int32_t height) {
    const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(Pixel);
    for (std::int32_t y = 0; y < height; ++y, pixels += rowBytes) {
        std::uint8_t* left = pixels;
        std::uint8_t* right = pixels + rowBytes - sizeof(Pixel);
        for (; left < right; left += sizeof(Pixel), right -= sizeof(Pixel)) {
            Pixel a;
            Pixel b;
            std::memcpy(&a, left, sizeof(Pixel));
            std::memcpy(&b, right, sizeof(Pixel));
            std::memcpy(left, &b, sizeof(Pixel));
            std::memcpy(right, &a, sizeof(Pixel));
        }
    }
}

}  // namespace

bool rotate90(const std::uint8_t* source, std::uint8_t* target, std::int32_t width,
              std::int32_t height, std::int32_t pixelBytes) {
    if (!isTurnable(width, height, pixelBytes)) return false;
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{pixelBytes} * width;
    run({source + (height - 1) * rowBytes, -rowBytes, target, std::ptrdiff_t{pixelBytes} * height,
         width, height},
        pixelBytes);
    return true;
}

bool rotateMinus90(const std::uint8_t* source, std::uint8_t* target, std::int32_t width,
                   std::int32_t height, std::int32_t pixelBytes) {
    if (!isTurnable(width, height, pixelBytes)) return false;
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{pixelBytes} * height;
    run({source, std::ptrdiff_t{pixelBytes} * width, target + (width - 1) * rowBytes, -rowBytes,
         width, height},
        pixelBytes);
    return true;
}

bool mirrorX(std::uint8_t* pixels, std::int32_t width, std::int32_t height,
             std::int32_t pixelBytes) {
    if (!isTurnable(width, height, pixelBytes)) return false;
    pixelBytes == 4 ? mirrorRows<std::uint32_t>(pixels, width, height)
                    : mirrorRows<std::uint8_t>(pixels, width, height);
    return true;
}

bool flipY(std::uint8_t* pixels, std::int32_t width, std::int32_t height, std::int32_t pixelBytes) {
    if (!isTurnable(width, height, pixelBytes)) return false;
    const std::size_t rowBytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(pixelBytes);
    std::uint8_t* low = pixels;
    std::uint8_t* high = pixels + static_cast<std::size_t>(height - 1) * rowBytes;
    for (; low < high; low += rowBytes, high -= rowBytes)
        std::swap_ranges(low, low + rowBytes, high);
    return true;
}

}  // namespace brushwork
