// brushwork_sheet IN OUT.png: one photograph as the image layer scales, warps, filters and tones
// it, on a numbered contact sheet.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "digits.h"
#include "image/filter/il_convolution_img.h"
#include "image/work/il_sp_memory_img.h"
#include "image/work/perspective_warp_solver.h"
#include "photograph.h"

namespace {

using namespace brushwork;
using Image = Ref<ilSPMemoryImg>;

constexpr std::uint8_t paper = 0x38;
constexpr std::int32_t largestSide = 480;
constexpr std::int32_t margin = 12;
constexpr std::int32_t across = 4;

Image blank(std::int32_t width, std::int32_t height) {
    Image image(new ilSPMemoryImg(width, height, 4));
    const std::uint8_t bytes[] = {paper, paper, paper, 255};
    image->fillRegion(image->box(), ilPixel(TypeUChar, 4, bytes));
    return image;
}

Image copyOf(ilSPMemoryImg& picture) {
    return makeRef<ilSPMemoryImg>(&picture);
}

// The middle of the scaled picture, as much as the picture's own size holds.
Image scaled(ilSPMemoryImg& picture, float scale) {
    picture.setScale(scale, scale);
    picture.setSampleModes(SampleMode::Bicubic, SampleMode::Bicubic);
    const std::int32_t width = SamplingTables::scaledSize(picture.sizeX(), scale);
    const std::int32_t height = SamplingTables::scaledSize(picture.sizeY(), scale);
    const auto result = blank(std::min(width, picture.sizeX()), std::min(height, picture.sizeY()));
    const std::int32_t w = result->sizeX(), h = result->sizeY();
    picture.scaleRegionInto({(width - w) / 2, (height - h) / 2, w, h}, result->scaledTarget());
    return result;
}

// A quarter of the size. The edge that no whole block covers is left out: it is transparent.
Image downsampled(ilSPMemoryImg& picture) {
    const auto reduced = picture.downsampled(0.25f);
    const auto result = blank(std::max(1, picture.sizeX() / 4), std::max(1, picture.sizeY() / 4));
    if (reduced)
        result->copyRegion(result->box(), *reduced, 0, 0, 0, nullptr, CopyDirection::FromOther);
    return result;
}

// Corners as fractions of the picture's size, counted from the bottom left.
QuadCorners quadOf(ilSPMemoryImg& picture, const QuadCorners& fractions) {
    QuadCorners corners = fractions;
    for (QuadPoint& corner : corners) {
        corner.x *= static_cast<float>(picture.sizeX());
        corner.y *= static_cast<float>(picture.sizeY());
    }
    return corners;
}

Image cornerWarped(ilSPMemoryImg& picture, const QuadCorners& fractions) {
    const auto result = blank(picture.sizeX(), picture.sizeY());
    picture.setSampleModes(SampleMode::Bicubic, SampleMode::Bicubic);
    picture.warpInto(quadOf(picture, fractions), result.get());
    return result;
}

Image perspectiveWarped(ilSPMemoryImg& picture, const QuadCorners& fractions) {
    const auto result = blank(picture.sizeX(), picture.sizeY());
    const QuadCorners corners = quadOf(picture, fractions);
    if (const auto map = quadToSquare(corners)) {
        picture.setSampleModes(SampleMode::Bicubic, SampleMode::Bicubic);
        picture.warpThrough(PerspectiveWarpSolver(corners, static_cast<float>(picture.sizeX()),
                                                  static_cast<float>(picture.sizeY()), *map),
                            result.get());
    }
    return result;
}

// About the middle, shrunk so that it fits.
Image turned(ilSPMemoryImg& picture, float degrees) {
    const float angle = degrees * 3.14159265f / 180.0f;
    const float w = static_cast<float>(picture.sizeX());
    const float h = static_cast<float>(picture.sizeY());
    const float s = std::sin(angle), c = std::cos(angle);
    const float shrink = std::min(w / (w * c + h * s), h / (w * s + h * c));
    QuadCorners corners{{{0, 0}, {w, 0}, {w, h}, {0, h}}};
    for (QuadPoint& corner : corners) {
        const float x = (corner.x - w / 2) * shrink;
        const float y = (corner.y - h / 2) * shrink;
        corner = {w / 2 + x * c - y * s, h / 2 + x * s + y * c};
    }
    // Rounding leaves the fourth corner a hair off the parallelogram that the others span.
    corners[3] = {corners[0].x + (corners[2].x - corners[1].x),
                  corners[0].y + (corners[2].y - corners[1].y)};
    const auto result = blank(picture.sizeX(), picture.sizeY());
    picture.setSampleModes(SampleMode::Bicubic, SampleMode::Bicubic);
    picture.warpInto(corners, result.get());
    return result;
}

Image filtered(ilSPMemoryImg& picture, const ConvolutionKernel& kernel) {
    const auto result = makeRef<ilConvolutionImg>(&picture);
    result->convolve(kernel);
    return result;
}

Image blurred(ilSPMemoryImg& picture, float radius) {
    return filtered(picture, ConvolutionKernel(-1.0f, radius, 0.33333334f));
}

Image inverted(ilSPMemoryImg& picture) {
    const auto result = copyOf(picture);
    result->invert();
    return result;
}

// The tones work on one channel: each colour goes through an image of its own.
Image toned(ilSPMemoryImg& picture, float brightness, float contrast) {
    const auto result = copyOf(picture);
    const auto channel = makeRef<ilSPMemoryImg>(picture.sizeX(), picture.sizeY(), 1);
    for (std::int32_t c = 0; c < 3; ++c) {
        const ilImageConfig one(TypeUChar, OrderInterleaved, 1, c);
        result->readRegion(result->box(), channel->data(), result->box(), &one);
        channel->brightnessContrast(brightness, contrast);
        result->writeRegion(result->box(), channel->data(), result->box(), &one);
    }
    return result;
}

struct Entry {
    const char* what;
    std::function<Image(ilSPMemoryImg&)> make;
};

const std::vector<Entry>& entries() {
    static const std::vector<Entry> all = {
        {"original", copyOf},
        {"bicubic at 0.37", [](auto& p) { return scaled(p, 0.37f); }},
        {"bicubic at 1.6, the middle", [](auto& p) { return scaled(p, 1.6f); }},
        {"downsampled by blocks of 4", downsampled},
        {"corner warp",
         [](auto& p) {
             return cornerWarped(p,
                                 {{{0.02f, 0.15f}, {0.80f, 0.02f}, {0.98f, 0.70f}, {0.2f, 0.97f}}});
         }},
        {"perspective",
         [](auto& p) {
             return perspectiveWarped(p, {{{0, 0}, {1, 0}, {0.78f, 1}, {0.22f, 1}}});
         }},
        {"turned by 30 degrees", [](auto& p) { return turned(p, 30.0f); }},
        {"strong perspective",
         [](auto& p) {
             return perspectiveWarped(p, {{{0, 0}, {1, 0.42f}, {1, 0.58f}, {0, 1}}});
         }},
        {"blur, radius 5", [](auto& p) { return blurred(p, 5.0f); }},
        {"blur, radius 20", [](auto& p) { return blurred(p, 20.0f); }},
        {"blur, radius 60", [](auto& p) { return blurred(p, 60.0f); }},
        {"sharpened",
         [](auto& p) { return filtered(p, ConvolutionKernel(1.5f, 3.0f, 0.33333334f)); }},
        {"inverted", inverted},
        {"brightness +10, contrast +40", [](auto& p) { return toned(p, 10.0f, 40.0f); }},
        {"brightness -10, contrast -40", [](auto& p) { return toned(p, -10.0f, -40.0f); }},
    };
    return all;
}

// At most `largestSide` pixels on either side.
Image fitted(const Image& photograph) {
    const std::int32_t width = photograph->sizeX();
    const std::int32_t height = photograph->sizeY();
    const std::int32_t larger = std::max(width, height);
    if (larger <= largestSide) return photograph;
    const auto side = [larger](std::int32_t size) {
        return std::max(1, static_cast<std::int32_t>(std::int64_t{size} * largestSide / larger));
    };
    auto result = blank(side(width), side(height));
    photograph->scaleInto(result.get());
    return result;
}

Image sheetOf(ilSPMemoryImg& picture) {
    const std::int32_t cellX = std::max(picture.sizeX(), 80) + margin;
    const std::int32_t cellY = std::max(picture.sizeY(), 40) + margin;
    const auto count = static_cast<std::int32_t>(entries().size());
    const std::int32_t down = (count + across - 1) / across;
    auto sheet = blank(across * cellX + margin, down * cellY + margin);
    for (std::int32_t n = 0; n < count; ++n) {
        const Entry& entry = entries()[static_cast<std::size_t>(n)];
        const Image image = entry.make(picture);
        const std::int32_t x = margin + n % across * cellX;
        const std::int32_t y = margin + (down - 1 - n / across) * cellY;
        if (image)
            sheet->copyRegion(flatTile(x, y, image->sizeX(), image->sizeY()), *image, 0, 0, 0,
                              nullptr, CopyDirection::FromOther);
        sheet::drawNumber(*sheet, x, y, n + 1);
        std::printf("%2d  %s\n", static_cast<int>(n + 1), entry.what);
    }
    return sheet;
}

}  // namespace

int main(int argc, char** argv) {
    return sheet::runSheet(argc, argv, paper,
                           [](const Image& photograph) { return sheetOf(*fitted(photograph)); });
}
