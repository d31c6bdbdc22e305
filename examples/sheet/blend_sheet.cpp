// brushwork_blend_sheet BACK FRONT OUT.png: one photograph laid on another in every blend mode, at
// five opacities each. The front one fades out toward its rim, so that each mode shows its alpha.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "blending/modes/blender_registry.h"
#include "digits.h"
#include "image/work/il_sp_memory_img.h"
#include "photograph.h"

namespace {

using namespace brushwork;
using Image = Ref<ilSPMemoryImg>;

constexpr std::uint8_t paper = 0x38;
constexpr std::int32_t cellX = 132, cellY = 99;
constexpr std::int32_t margin = 6;
constexpr std::int32_t modesAcross = 3;
constexpr std::array opacities = {0.15f, 0.35f, 0.6f, 0.85f, 1.0f};

struct Mode {
    BlendModeId id;
    const char* name;
};
constexpr Mode modes[] = {
#define BRUSHWORK_ROW(name, id, type) {BlendModeId::name, #name},
    BRUSHWORK_BLEND_MODES(BRUSHWORK_ROW)
#undef BRUSHWORK_ROW
};
constexpr auto modeCount = static_cast<std::int32_t>(std::size(modes));

// Modes whose source is paint that the brush carries along, on two planes.
bool carriesPaint(BlendModeId mode) {
    return mode == BlendModeId::MarkerColorless || mode == BlendModeId::Smudge ||
           mode == BlendModeId::Pastel;
}

Image filled(std::int32_t width, std::int32_t height, std::int32_t channels, std::uint8_t value,
             std::uint8_t alpha) {
    Image image(new ilSPMemoryImg(width, height, channels));
    const std::uint8_t bytes[] = {value, value, value, alpha};
    image->fillRegion(image->box(), ilPixel(TypeUChar, channels, bytes));
    return image;
}

Image copyOf(ilSPMemoryImg& picture) {
    return makeRef<ilSPMemoryImg>(&picture);
}

Image fitted(ilSPMemoryImg& photograph) {
    auto result = filled(cellX, cellY, 4, paper, 255);
    photograph.scaleInto(result.get());
    return result;
}

// Opaque in the middle, empty at the rim.
void fade(ilSPMemoryImg& image) {
    for (std::int32_t y = 0; y < cellY; ++y)
        for (std::int32_t x = 0; x < cellX; ++x) {
            const float dx = (static_cast<float>(x) + 0.5f) / cellX * 2.0f - 1.0f;
            const float dy = (static_cast<float>(y) + 0.5f) / cellY * 2.0f - 1.0f;
            const float part = std::clamp(1.8f - 1.8f * std::hypot(dx, dy), 0.0f, 1.0f);
            std::uint8_t* const pixel = image.data() + 4 * (y * cellX + x);
            for (int c = 0; c < 4; ++c)
                pixel[c] = static_cast<std::uint8_t>(static_cast<float>(pixel[c]) * part);
        }
}

Image blended(Mode mode, float opacity, ilSPMemoryImg& back, ilSPMemoryImg& front) {
    const Image target = copyOf(back);
    const Image low = filled(cellX, cellY, 4, 0, 0);
    const Image source = copyOf(front);
    const Image sourceLow = filled(cellX, cellY, 4, 0, 0);
    const Image mask = filled(cellX, cellY, 1, 255, 255);
    const auto blender = npc::createBlender(mode.id);
    if (!blender) return target;
    blender->setDestination(target.get(), 0, 0);
    blender->setSecondDestination(low.get(), 0, 0);
    blender->setSource(source.get(), 0, 0, carriesPaint(mode.id));
    if (carriesPaint(mode.id)) blender->setSecondSource(sourceLow.get(), 0, 0, true);
    // A mask is what the paint modes can't do without; the others show their way without one.
    const bool needsMask = carriesPaint(mode.id) || mode.id >= BlendModeId::Replace;
    if (needsMask)
        blender->setMask(mask.get(), 0, 0, false);
    else
        blender->setSecondDestination(nullptr, 0, 0);
    blender->setOpacity(opacity);
    blender->setOpacity2(opacity);
    blender->run(target->box());
    return target;
}

Image sheetOf(ilSPMemoryImg& back, ilSPMemoryImg& front) {
    constexpr auto steps = static_cast<std::int32_t>(opacities.size());
    const std::int32_t groupX = steps * (cellX + 2) + margin;
    const std::int32_t down = (modeCount + modesAcross - 1) / modesAcross;
    auto sheet =
        filled(modesAcross * groupX + margin, down * (cellY + margin) + margin, 4, paper, 255);
    for (std::int32_t n = 0; n < modeCount; ++n) {
        const Mode mode = modes[n];
        const std::int32_t x0 = margin + n / down * groupX;
        const std::int32_t y = margin + (down - 1 - n % down) * (cellY + margin);
        for (std::int32_t step = 0; step < steps; ++step) {
            const auto image =
                blended(mode, opacities[static_cast<std::size_t>(step)], back, front);
            sheet->copyRegion(flatTile(x0 + step * (cellX + 2), y, cellX, cellY), *image, 0, 0, 0,
                              nullptr, CopyDirection::FromOther);
        }
        sheet::drawNumber(*sheet, x0, y, static_cast<int>(mode.id));
        std::printf("%3d  %s\n", static_cast<int>(mode.id), mode.name);
    }
    return sheet;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s BACK FRONT OUT.png\n", argv[0]);
        return 2;
    }
    std::array<Image, 2> pictures;
    std::string trouble;
    for (std::size_t n = 0; n < pictures.size(); ++n) {
        const Image photograph = sheet::openPhotograph(argv[n + 1], paper, trouble);
        if (!photograph) {
            std::fprintf(stderr, "%s: %s\n", argv[n + 1], trouble.c_str());
            return 3;
        }
        pictures[n] = fitted(*photograph);
    }
    fade(*pictures[1]);
    const Image sheet = sheetOf(*pictures[0], *pictures[1]);
    if (!sheet::savePhotograph(argv[3], *sheet, trouble)) {
        std::fprintf(stderr, "%s: %s\n", argv[3], trouble.c_str());
        return 4;
    }
    return 0;
}
